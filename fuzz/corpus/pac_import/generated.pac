function FindProxyForURL(url, host) {
    if (shExpMatch(host, "db.corp")) return "SOCKS5 127.0.0.1:1080"; // web
    if (shExpMatch(host, "*.corp")) return "SOCKS5 127.0.0.1:1080"; // web
    return "DIRECT";
}