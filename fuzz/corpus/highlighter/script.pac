// if (shExpMatch(host, "no")) return "SOCKS5 127.0.0.1:1080";
var list = ["*.a.com", 'single', "10.0.*"];
function FindProxyForURL(url, host) {
    for (var i = 0; i < list.length; i++)
        if (shExpMatch(host, list[i])) return "SOCKS5 127.0.0.1:1080; DIRECT";
    if (shExpMatch(host, "a") || shExpMatch ( host , "b.corp"))
        return "SOCKS5 localhost:1081";
    if (shExpMatch(host, "intranet")) return "DIRECT"; // exception
    return "DIRECT";
}
