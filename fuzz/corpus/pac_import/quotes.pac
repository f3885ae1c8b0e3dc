var a=["x
y"," z "];a.length "SOCKS5 localhost:1080" var a=[];"SOCKS5 127.0.0.1:99999999999999999999"