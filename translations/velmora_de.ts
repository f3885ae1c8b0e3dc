<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de" sourcelanguage="en">
<context>
    <name>velmora::AboutView</name>
    <message>
        <source>About Velmora</source>
        <translation>Über Velmora</translation>
    </message>
    <message>
        <source>Velmora</source>
        <translation>Velmora</translation>
    </message>
    <message>
        <source>Version %1</source>
        <translation>Version %1</translation>
    </message>
    <message>
        <source>Changes</source>
        <translation>Änderungen</translation>
    </message>
</context>
<context>
    <name>velmora::AdvancedTabView</name>
    <message>
        <source>ServerAliveInterval</source>
        <translation>ServerAliveInterval</translation>
    </message>
    <message>
        <source>ServerAliveCountMax</source>
        <translation>ServerAliveCountMax</translation>
    </message>
    <message>
        <source>Connect Timeout</source>
        <translation>Zeitlimit für Verbindung</translation>
    </message>
    <message>
        <source>seconds</source>
        <translation>Sekunden</translation>
    </message>
    <message>
        <source>Compression</source>
        <translation>Komprimierung</translation>
    </message>
    <message>
        <source>Enable (-C flag)</source>
        <translation>Einschalten (Schalter -C)</translation>
    </message>
    <message>
        <source>Host Key Checking</source>
        <translation>Prüfung des Hostschlüssels</translation>
    </message>
    <message>
        <source>Strict host key checking</source>
        <translation>Hostschlüssel streng prüfen</translation>
    </message>
    <message>
        <source>Extra Options</source>
        <translation>Weitere Optionen</translation>
    </message>
    <message>
        <source>One SSH -o option per line, e.g.</source>
        <translation>Eine SSH-Option (-o) je Zeile, z. B.</translation>
    </message>
</context>
<context>
    <name>velmora::ConnectionTabView</name>
    <message>
        <source>SSH Key</source>
        <translation>SSH-Schlüssel</translation>
    </message>
    <message>
        <source>Password</source>
        <comment>way of authentication</comment>
        <translation>Passwort</translation>
    </message>
    <message>
        <source>Authentication</source>
        <translation>Anmeldung</translation>
    </message>
    <message>
        <source>Choose…</source>
        <translation>Auswählen…</translation>
    </message>
    <message>
        <source>Choose the identity file</source>
        <translation>Die Schlüsseldatei auswählen</translation>
    </message>
    <message>
        <source>Leave empty to use ssh-agent or the default key.</source>
        <translation>Leer lassen, um ssh-agent oder den Standardschlüssel zu verwenden.</translation>
    </message>
    <message>
        <source>Identity File</source>
        <translation>Schlüsseldatei</translation>
    </message>
    <message>
        <source>Password is stored in the macOS Keychain.</source>
        <translation>Das Passwort liegt im macOS-Schlüsselbund.</translation>
    </message>
    <message>
        <source>Password</source>
        <translation>Passwort</translation>
    </message>
    <message>
        <source>Select SSH Identity File</source>
        <translation>SSH-Schlüsseldatei auswählen</translation>
    </message>
</context>
<context>
    <name>velmora::ConnectionsSection</name>
    <message>
        <source>Connections</source>
        <translation>Verbindungen</translation>
    </message>
    <message>
        <source>Performance Mode</source>
        <translation>Leistungsmodus</translation>
    </message>
    <message>
        <source>Applies to all connections: fast cipher (AES-GCM), skip GSSAPI negotiation, QoS lowdelay. Reconnect active tunnels to take effect.</source>
        <translation>Gilt für alle Verbindungen: schnelle Verschlüsselung (AES-GCM), keine GSSAPI-Aushandlung, QoS lowdelay. Wirkt bei aktiven Tunneln, wenn sie neu verbunden werden.</translation>
    </message>
    <message>
        <source>anna@bastion.example.com</source>
        <translation>anna@bastion.example.com</translation>
    </message>
    <message>
        <source>Enabled</source>
        <translation>Eingeschaltet</translation>
    </message>
    <message>
        <source>Global ProxyJump enabled</source>
        <translation>Globaler ProxyJump eingeschaltet</translation>
    </message>
    <message>
        <source>Global ProxyJump</source>
        <translation>Globaler ProxyJump</translation>
    </message>
    <message>
        <source>Applied to all tunnels that don&apos;t have a per-host ProxyJump set. Toggling reconnects all active tunnels.</source>
        <translation>Gilt für alle Tunnel ohne eigenen ProxyJump. Beim Umschalten werden alle aktiven Tunnel neu verbunden.</translation>
    </message>
</context>
<context>
    <name>velmora::ContentView</name>
    <message>
        <source>Velmora</source>
        <translation>Velmora</translation>
    </message>
    <message>
        <source>&amp;File</source>
        <translation>&amp;Datei</translation>
    </message>
    <message>
        <source>&amp;New Tunnel</source>
        <translation>&amp;Neuer Tunnel</translation>
    </message>
    <message>
        <source>Import from Velmora &amp;Backup…</source>
        <translation>Aus Velmora-&amp;Sicherung importieren…</translation>
    </message>
    <message>
        <source>&amp;Import from Core Tunnel…</source>
        <translation>Aus Core Tunnel &amp;importieren…</translation>
    </message>
    <message>
        <source>&amp;Export Tunnels…</source>
        <translation>Tunnel &amp;exportieren…</translation>
    </message>
    <message>
        <source>&amp;Close Window</source>
        <translation>Fenster &amp;schließen</translation>
    </message>
    <message>
        <source>&amp;Quit Velmora</source>
        <translation>Velmora &amp;beenden</translation>
    </message>
    <message>
        <source>&amp;Tunnel</source>
        <translation>&amp;Tunnel</translation>
    </message>
    <message>
        <source>&amp;Connect</source>
        <translation>&amp;Verbinden</translation>
    </message>
    <message>
        <source>Move &amp;Up</source>
        <translation>Nach &amp;oben</translation>
    </message>
    <message>
        <source>Move &amp;Down</source>
        <translation>Nach &amp;unten</translation>
    </message>
    <message>
        <source>&amp;Search</source>
        <translation>&amp;Suchen</translation>
    </message>
    <message>
        <source>D&amp;elete…</source>
        <translation>&amp;Löschen…</translation>
    </message>
    <message>
        <source>T&amp;ools</source>
        <translation>&amp;Werkzeuge</translation>
    </message>
    <message>
        <source>&amp;PAC Editor…</source>
        <translation>&amp;PAC-Editor…</translation>
    </message>
    <message>
        <source>Proxy &amp;Exceptions…</source>
        <translation>Proxy-&amp;Ausnahmen…</translation>
    </message>
    <message>
        <source>&amp;Add Proxy Exception…</source>
        <translation>Proxy-Ausnahme &amp;hinzufügen…</translation>
    </message>
    <message>
        <source>&amp;Settings…</source>
        <translation>&amp;Einstellungen…</translation>
    </message>
    <message>
        <source>&amp;Help</source>
        <translation>&amp;Hilfe</translation>
    </message>
    <message>
        <source>&amp;About Velmora</source>
        <translation>&amp;Über Velmora</translation>
    </message>
    <message>
        <source>Dis&amp;connect</source>
        <translation>&amp;Trennen</translation>
    </message>
</context>
<context>
    <name>velmora::ElidedLabel</name>
    <message>
        <source>Copy</source>
        <translation>Kopieren</translation>
    </message>
</context>
<context>
    <name>velmora::ExceptionsEditorView</name>
    <message>
        <source>Proxy Exceptions</source>
        <translation>Proxy-Ausnahmen</translation>
    </message>
    <message>
        <source>Save</source>
        <translation>Sichern</translation>
    </message>
    <message>
        <source>Add host to bypass proxy (%1)</source>
        <translation>Host am Proxy vorbei (%1)</translation>
    </message>
    <message>
        <source>Add host to bypass proxy</source>
        <translation>Host am Proxy vorbei</translation>
    </message>
    <message>
        <source>Add to the list</source>
        <translation>Zur Liste hinzufügen</translation>
    </message>
    <message>
        <source>Hosts that bypass the proxy, one per line</source>
        <translation>Hosts am Proxy vorbei, einer je Zeile</translation>
    </message>
    <message>
        <source>One host pattern per line. Wildcards allowed (e.g. 10.0.*, *.corp). Saved exceptions are added to the PAC ahead of all proxy rules.</source>
        <translation>Ein Host-Muster je Zeile. Platzhalter sind erlaubt (z. B. 10.0.*, *.corp). Gesicherte Ausnahmen stehen in der PAC-Datei vor allen Proxy-Regeln.</translation>
    </message>
    <message>
        <source>1 exception — matching hosts connect DIRECT</source>
        <translation>1 Ausnahme – passende Hosts verbinden DIRECT</translation>
    </message>
    <message numerus="yes">
        <source>%n exceptions — matching hosts connect DIRECT</source>
        <translation>
            <numerusform>%n Ausnahme – passende Hosts verbinden DIRECT</numerusform>
            <numerusform>%n Ausnahmen – passende Hosts verbinden DIRECT</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>velmora::FilePanels</name>
    <message>
        <source>Export Velmora Hosts</source>
        <translation>Velmora-Hosts exportieren</translation>
    </message>
    <message>
        <source>Select Velmora Backup</source>
        <translation>Velmora-Sicherung auswählen</translation>
    </message>
    <message>
        <source>Choose a velmora-backup.json file</source>
        <translation>Eine Datei velmora-backup.json auswählen</translation>
    </message>
    <message>
        <source>Select Core Tunnel Backup</source>
        <translation>Core-Tunnel-Sicherung auswählen</translation>
    </message>
    <message>
        <source>Choose a .coretunnel backup file</source>
        <translation>Eine Sicherungsdatei (.coretunnel) auswählen</translation>
    </message>
</context>
<context>
    <name>velmora::FindBar</name>
    <message>
        <source>Find Previous</source>
        <translation>Vorheriges suchen</translation>
    </message>
    <message>
        <source>Find Next</source>
        <translation>Nächstes suchen</translation>
    </message>
    <message>
        <source>Find</source>
        <translation>Suchen</translation>
    </message>
    <message>
        <source>Close Find Bar</source>
        <translation>Suchleiste schließen</translation>
    </message>
    <message>
        <source>Not found</source>
        <translation>Nicht gefunden</translation>
    </message>
    <message>
        <source>%1 of %2</source>
        <translation>%1 von %2</translation>
    </message>
    <message>
        <source>1 match</source>
        <translation>1 Treffer</translation>
    </message>
    <message>
        <source>%1 matches</source>
        <translation>%1 Treffer</translation>
    </message>
</context>
<context>
    <name>velmora::FindButton</name>
    <message>
        <source>Find</source>
        <translation>Suchen</translation>
    </message>
</context>
<context>
    <name>velmora::ForwardingRuleRow</name>
    <message>
        <source>Local</source>
        <translation>Lokal</translation>
    </message>
    <message>
        <source>Remote</source>
        <translation>Entfernt</translation>
    </message>
    <message>
        <source>Dynamic</source>
        <translation>Dynamisch</translation>
    </message>
    <message>
        <source>hostname</source>
        <translation>Hostname</translation>
    </message>
    <message>
        <source>Rule is on</source>
        <translation>Regel ist eingeschaltet</translation>
    </message>
    <message>
        <source>Type of forwarding</source>
        <translation>Art der Weiterleitung</translation>
    </message>
    <message>
        <source>Bind address</source>
        <translation>Bind-Adresse</translation>
    </message>
    <message>
        <source>Bind port</source>
        <translation>Bind-Port</translation>
    </message>
    <message>
        <source>Target address</source>
        <translation>Zieladresse</translation>
    </message>
    <message>
        <source>Target port</source>
        <translation>Zielport</translation>
    </message>
</context>
<context>
    <name>velmora::ForwardingTable</name>
    <message>
        <source>No forwarding rules — click + to add</source>
        <translation>Keine Weiterleitungen – mit + hinzufügen</translation>
    </message>
    <message>
        <source>Proxy patterns</source>
        <translation>Proxy-Muster</translation>
    </message>
    <message>
        <source>one host glob per line, e.g.</source>
        <translation>ein Host-Muster je Zeile, z. B.</translation>
    </message>
</context>
<context>
    <name>velmora::GeneralSection</name>
    <message>
        <source>General</source>
        <translation>Allgemein</translation>
    </message>
    <message>
        <source>Launch at Login</source>
        <translation>Bei der Anmeldung starten</translation>
    </message>
</context>
<context>
    <name>velmora::GeneralTabView</name>
    <message>
        <source>Port %1 is used by two rules on this host</source>
        <translation>Port %1 wird von zwei Regeln dieses Hosts verwendet</translation>
    </message>
    <message>
        <source>Port %1 conflicts with &quot;%2&quot;</source>
        <translation>Port %1 ist schon bei „%2“ vergeben</translation>
    </message>
    <message>
        <source>Port</source>
        <translation>Port</translation>
    </message>
    <message>
        <source>Host</source>
        <translation>Host</translation>
    </message>
    <message>
        <source>Login name</source>
        <translation>Anmeldename</translation>
    </message>
    <message>
        <source>User</source>
        <translation>Benutzer</translation>
    </message>
    <message>
        <source>Jump Host</source>
        <translation>Sprunghost</translation>
    </message>
    <message>
        <source>Passed as -J to ssh. Leave empty for direct connection.</source>
        <translation>Geht als -J an ssh. Leer lassen für eine direkte Verbindung.</translation>
    </message>
    <message>
        <source>Use SSH config alias</source>
        <translation>Alias aus der SSH-Konfiguration</translation>
    </message>
    <message>
        <source>Pass host as-is to SSH — port, user, identity, ProxyJump, etc. come from ~/.ssh/config</source>
        <translation>Host unverändert an SSH geben – Port, Benutzer, Schlüssel, ProxyJump usw. kommen aus ~/.ssh/config</translation>
    </message>
    <message>
        <source>Forwarding rules</source>
        <translation>Weiterleitungen</translation>
    </message>
    <message>
        <source>Forwarding</source>
        <translation>Weiterleitung</translation>
    </message>
    <message>
        <source>Add a forwarding rule</source>
        <translation>Weiterleitung hinzufügen</translation>
    </message>
    <message>
        <source>Remove the selected rule</source>
        <translation>Ausgewählte Weiterleitung entfernen</translation>
    </message>
    <message>
        <source>This Mac</source>
        <translation>Dieser Mac</translation>
    </message>
    <message>
        <source>Remote Side</source>
        <translation>Gegenseite</translation>
    </message>
    <message>
        <source>Target Host</source>
        <translation>Zielhost</translation>
    </message>
    <message>
        <source>Do not request session on the remote system (recommend)</source>
        <translation>Keine Sitzung auf dem entfernten System anfordern (empfohlen)</translation>
    </message>
    <message>
        <source>Connect on startup</source>
        <translation>Beim Start verbinden</translation>
    </message>
    <message>
        <source>Corresponds to ssh command option -N, this is useful for just forwarding ports.</source>
        <translation>Entspricht der ssh-Option -N; nützlich, wenn nur Ports weitergeleitet werden.</translation>
    </message>
    <message>
        <source>Session</source>
        <translation>Sitzung</translation>
    </message>
    <message>
        <source>SSH config alias, e.g. f</source>
        <translation>SSH-Alias, z. B. f</translation>
    </message>
    <message>
        <source>IP address or hostname</source>
        <translation>IP-Adresse oder Hostname</translation>
    </message>
</context>
<context>
    <name>velmora::HostDetailView</name>
    <message>
        <source>Name</source>
        <translation>Name</translation>
    </message>
    <message>
        <source>Tags</source>
        <translation>Schlagwörter</translation>
    </message>
</context>
<context>
    <name>velmora::HostFooter</name>
    <message>
        <source>Save</source>
        <translation>Sichern</translation>
    </message>
    <message>
        <source>Connect</source>
        <translation>Verbinden</translation>
    </message>
    <message>
        <source>Disconnect</source>
        <translation>Trennen</translation>
    </message>
    <message>
        <source>Open log in Console</source>
        <translation>Protokoll in der Konsole öffnen</translation>
    </message>
    <message>
        <source>Copy SSH command to clipboard</source>
        <translation>SSH-Befehl in die Zwischenablage kopieren</translation>
    </message>
    <message>
        <source>There is no log of &quot;%1&quot; yet; it begins when the host is connected for the first time.</source>
        <translation>Von „%1“ gibt es noch kein Protokoll; es beginnt mit der ersten Verbindung.</translation>
    </message>
</context>
<context>
    <name>velmora::HostTabsView</name>
    <message>
        <source>Tabs</source>
        <translation>Reiter</translation>
    </message>
    <message>
        <source>General</source>
        <translation>Allgemein</translation>
    </message>
    <message>
        <source>Connection</source>
        <translation>Verbindung</translation>
    </message>
    <message>
        <source>Advanced</source>
        <translation>Erweitert</translation>
    </message>
</context>
<context>
    <name>velmora::HttpTransfer</name>
    <message>
        <source>The request timed out.</source>
        <translation>Die Anfrage hat zu lange gedauert.</translation>
    </message>
    <message>
        <source>The request was cancelled.</source>
        <translation>Die Anfrage wurde abgebrochen.</translation>
    </message>
    <message>
        <source>The answer is larger than %1 bytes.</source>
        <translation>Die Antwort ist größer als %1 Bytes.</translation>
    </message>
    <message>
        <source>The connection was lost before the answer was complete.</source>
        <translation>Die Verbindung brach ab, bevor die Antwort vollständig war.</translation>
    </message>
</context>
<context>
    <name>velmora::ImportResult</name>
    <message>
        <source>Imported 1 tunnel.</source>
        <translation>1 Tunnel importiert.</translation>
    </message>
    <message numerus="yes">
        <source>Imported %n tunnels.</source>
        <translation>
            <numerusform>%n Tunnel importiert.</numerusform>
            <numerusform>%n Tunnel importiert.</numerusform>
        </translation>
    </message>
    <message>
        <source>Skipped 1 duplicate.</source>
        <translation>1 Duplikat übersprungen.</translation>
    </message>
    <message numerus="yes">
        <source>Skipped %n duplicates.</source>
        <translation>
            <numerusform>%n Duplikat übersprungen.</numerusform>
            <numerusform>%n Duplikate übersprungen.</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>velmora::LateModule</name>
    <message>
        <source>A part of Velmora cannot be loaded: %1</source>
        <translation>Ein Teil von Velmora kann nicht geladen werden: %1</translation>
    </message>
</context>
<context>
    <name>velmora::MenuBarContent</name>
    <message>
        <source>Connect All</source>
        <translation>Alle verbinden</translation>
    </message>
    <message>
        <source>Disconnect All</source>
        <translation>Alle trennen</translation>
    </message>
    <message>
        <source>Add Proxy Exception…</source>
        <translation>Proxy-Ausnahme hinzufügen…</translation>
    </message>
    <message>
        <source>Open Main Window</source>
        <translation>Hauptfenster öffnen</translation>
    </message>
    <message>
        <source>Settings…</source>
        <translation>Einstellungen…</translation>
    </message>
    <message>
        <source>About Velmora</source>
        <translation>Über Velmora</translation>
    </message>
    <message>
        <source>Quit Velmora</source>
        <translation>Velmora beenden</translation>
    </message>
    <message>
        <source>Update to v%1 &amp; Relaunch</source>
        <translation>Auf v%1 aktualisieren &amp; neu starten</translation>
    </message>
</context>
<context>
    <name>velmora::MenuBarIcon</name>
    <message numerus="yes">
        <source>%n connected</source>
        <translation>
            <numerusform>%n verbunden</numerusform>
            <numerusform>%n verbunden</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n connecting</source>
        <translation>
            <numerusform>%n wird verbunden</numerusform>
            <numerusform>%n werden verbunden</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n failed</source>
        <translation>
            <numerusform>%n fehlgeschlagen</numerusform>
            <numerusform>%n fehlgeschlagen</numerusform>
        </translation>
    </message>
    <message>
        <source>Velmora: %1</source>
        <translation>Velmora: %1</translation>
    </message>
    <message>
        <source>not connected</source>
        <translation>nicht verbunden</translation>
    </message>
</context>
<context>
    <name>velmora::MenuLabel</name>
    <message>
        <source>Unnamed</source>
        <translation>Ohne Namen</translation>
    </message>
</context>
<context>
    <name>velmora::NewHostSheet</name>
    <message>
        <source>Create</source>
        <translation>Anlegen</translation>
    </message>
    <message>
        <source>New Tunnel</source>
        <translation>Neuer Tunnel</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
</context>
<context>
    <name>velmora::NoSelectionView</name>
    <message>
        <source>No tunnel selected</source>
        <translation>Kein Tunnel ausgewählt</translation>
    </message>
    <message>
        <source>Add your first tunnel: name the server to reach and the ports to forward.</source>
        <translation>Legen Sie Ihren ersten Tunnel an: den Server und die Ports, die weitergeleitet werden.</translation>
    </message>
    <message>
        <source>Add Tunnel</source>
        <translation>Tunnel hinzufügen</translation>
    </message>
</context>
<context>
    <name>velmora::PacEditorView</name>
    <message>
        <source>PAC Editor</source>
        <translation>PAC-Editor</translation>
    </message>
    <message>
        <source>Apply</source>
        <translation>Anwenden</translation>
    </message>
    <message>
        <source>Copy PAC URL</source>
        <translation>PAC-URL kopieren</translation>
    </message>
    <message>
        <source>Regenerate from Hosts</source>
        <translation>Neu aus den Hosts erzeugen</translation>
    </message>
    <message>
        <source>PAC script</source>
        <translation>PAC-Skript</translation>
    </message>
    <message>
        <source>Tab writes a tab; Shift+Tab and Control+Tab leave the text.</source>
        <translation>Die Tabulatortaste schreibt einen Tabulator; Umschalt+Tab und Strg+Tab verlassen den Text.</translation>
    </message>
    <message>
        <source>Press ⌘F to find. Manual edits stop auto-regeneration until you click &quot;Regenerate from Hosts&quot;.</source>
        <translation>⌘F öffnet die Suche. Eigene Änderungen halten das automatische Erzeugen an, bis Sie „Neu aus den Hosts erzeugen“ wählen.</translation>
    </message>
    <message>
        <source>Custom (manual edits)</source>
        <translation>Eigene Fassung (von Hand geändert)</translation>
    </message>
    <message>
        <source>Auto-generated from hosts</source>
        <translation>Automatisch aus den Hosts erzeugt</translation>
    </message>
</context>
<context>
    <name>velmora::PacImporter</name>
    <message>
        <source>Nothing found</source>
        <translation>Nichts gefunden</translation>
    </message>
    <message>
        <source>No shExpMatch patterns with SOCKS5 proxies were found in the selected file.</source>
        <translation>In der gewählten Datei stehen keine shExpMatch-Muster mit SOCKS5-Proxys.</translation>
    </message>
    <message>
        <source>No matching tunnels</source>
        <translation>Keine passenden Tunnel</translation>
    </message>
    <message>
        <source>Found %1 patterns for ports: %2

None matched a Dynamic forwarding rule in Velmora.</source>
        <translation>%1 Muster gefunden für die Ports: %2

Keines passt zu einer dynamischen Weiterleitung in Velmora.</translation>
    </message>
    <message>
        <source>Import complete</source>
        <translation>Import abgeschlossen</translation>
    </message>
    <message>
        <source>Added 1 pattern to matching Dynamic forwarding rules.</source>
        <translation>1 Muster zu passenden dynamischen Weiterleitungen hinzugefügt.</translation>
    </message>
    <message numerus="yes">
        <source>Added %n patterns to matching Dynamic forwarding rules.</source>
        <translation>
            <numerusform>%n Muster zu passenden dynamischen Weiterleitungen hinzugefügt.</numerusform>
            <numerusform>%n Muster zu passenden dynamischen Weiterleitungen hinzugefügt.</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>velmora::PacProxySection</name>
    <message>
        <source>PAC Proxy</source>
        <translation>PAC-Proxy</translation>
    </message>
    <message>
        <source>Import Patterns from File…</source>
        <translation>Muster aus Datei importieren…</translation>
    </message>
    <message>
        <source>Copy PAC URL</source>
        <translation>PAC-URL kopieren</translation>
    </message>
    <message>
        <source>PAC URL</source>
        <translation>PAC-URL</translation>
    </message>
    <message>
        <source>Edit Exceptions…</source>
        <translation>Ausnahmen bearbeiten…</translation>
    </message>
    <message>
        <source>Exceptions</source>
        <translation>Ausnahmen</translation>
    </message>
    <message>
        <source>Hosts in the exception list bypass the proxy (DIRECT). Add quickly from the menu bar → “Add Proxy Exception…”.</source>
        <translation>Hosts auf der Ausnahmeliste gehen am Proxy vorbei (DIRECT). Schnell hinzufügen über die Menüleiste → „Proxy-Ausnahme hinzufügen…“.</translation>
    </message>
    <message>
        <source>Edit PAC…</source>
        <translation>PAC bearbeiten…</translation>
    </message>
    <message>
        <source>Select PAC File</source>
        <translation>PAC-Datei auswählen</translation>
    </message>
    <message>
        <source>Choose a proxy.pac file to import patterns from</source>
        <translation>Eine Datei proxy.pac mit Mustern zum Importieren auswählen</translation>
    </message>
    <message>
        <source>None</source>
        <translation>Keine</translation>
    </message>
    <message>
        <source>1 host</source>
        <translation>1 Host</translation>
    </message>
    <message numerus="yes">
        <source>%n hosts</source>
        <translation>
            <numerusform>%n Host</numerusform>
            <numerusform>%n Hosts</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>velmora::QuickExceptionView</name>
    <message>
        <source>Add Proxy Exception</source>
        <translation>Proxy-Ausnahme hinzufügen</translation>
    </message>
    <message>
        <source>Add</source>
        <translation>Hinzufügen</translation>
    </message>
    <message>
        <source>e.g. %1</source>
        <translation>z. B. %1</translation>
    </message>
    <message>
        <source>Host</source>
        <translation>Host</translation>
    </message>
    <message>
        <source>The matching host will bypass the proxy and connect DIRECT.</source>
        <translation>Der passende Host geht am Proxy vorbei und verbindet DIRECT.</translation>
    </message>
    <message>
        <source>Edit Full List…</source>
        <translation>Ganze Liste bearbeiten…</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
</context>
<context>
    <name>velmora::SettingsView</name>
    <message>
        <source>Settings</source>
        <translation>Einstellungen</translation>
    </message>
</context>
<context>
    <name>velmora::SidebarView</name>
    <message>
        <source>New Tunnel</source>
        <translation>Neuer Tunnel</translation>
    </message>
    <message>
        <source>Settings</source>
        <translation>Einstellungen</translation>
    </message>
    <message>
        <source>Search</source>
        <translation>Suchen</translation>
    </message>
    <message>
        <source>Clear Search</source>
        <translation>Suche löschen</translation>
    </message>
    <message>
        <source>Tunnels</source>
        <translation>Tunnel</translation>
    </message>
    <message>
        <source>Delete Tunnel</source>
        <translation>Tunnel löschen</translation>
    </message>
    <message>
        <source>Are you sure you want to delete &quot;%1&quot;? This cannot be undone.</source>
        <translation>Soll „%1“ wirklich gelöscht werden? Das lässt sich nicht rückgängig machen.</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>Löschen</translation>
    </message>
    <message>
        <source>No tunnel has this in its name or host name.</source>
        <translation>Kein Tunnel hat das im Namen oder Hostnamen.</translation>
    </message>
    <message>
        <source>Disconnect</source>
        <translation>Trennen</translation>
    </message>
    <message>
        <source>Connect</source>
        <translation>Verbinden</translation>
    </message>
</context>
<context>
    <name>velmora::StatusLook</name>
    <message>
        <source>Connected · %1</source>
        <translation>Verbunden · %1</translation>
    </message>
    <message>
        <source>Not Connected</source>
        <translation>Nicht verbunden</translation>
    </message>
    <message>
        <source>Connecting...</source>
        <translation>Wird verbunden …</translation>
    </message>
    <message>
        <source>Connected</source>
        <translation>Verbunden</translation>
    </message>
    <message>
        <source>Error: %1</source>
        <translation>Fehler: %1</translation>
    </message>
</context>
<context>
    <name>velmora::SyncSection</name>
    <message>
        <source>Sync</source>
        <translation>Abgleich</translation>
    </message>
    <message>
        <source>Disable</source>
        <translation>Ausschalten</translation>
    </message>
    <message>
        <source>Choose Folder…</source>
        <translation>Ordner auswählen…</translation>
    </message>
    <message>
        <source>Sync Folder</source>
        <translation>Ordner für den Abgleich</translation>
    </message>
    <message>
        <source>Point to a Google Drive, Dropbox, or any shared folder to keep tunnels in sync across Macs.</source>
        <translation>Google Drive, Dropbox oder ein anderer gemeinsamer Ordner hält die Tunnel auf allen Macs gleich.</translation>
    </message>
    <message>
        <source>Choose Sync Folder</source>
        <translation>Ordner für den Abgleich auswählen</translation>
    </message>
    <message>
        <source>Pick your Google Drive, Dropbox, or any shared folder. Velmora will keep velmora-sync.json there.</source>
        <translation>Wählen Sie Google Drive, Dropbox oder einen anderen gemeinsamen Ordner. Velmora hält dort velmora-sync.json.</translation>
    </message>
    <message>
        <source>Not configured</source>
        <translation>Nicht eingerichtet</translation>
    </message>
</context>
<context>
    <name>velmora::TunnelEngine</name>
    <message>
        <source>Exited (code %1)</source>
        <translation>Beendet (Code %1)</translation>
    </message>
    <message>
        <source>No hostname configured</source>
        <translation>Kein Hostname eingetragen</translation>
    </message>
    <message>
        <source>Reconnecting in %1s… (%2)</source>
        <translation>Neuer Versuch in %1 s… (%2)</translation>
    </message>
</context>
<context>
    <name>velmora::UpdateError</name>
    <message>
        <source>The installation was cancelled.</source>
        <translation>Die Installation wurde abgebrochen.</translation>
    </message>
    <message>
        <source>Update check failed: %1</source>
        <translation>Suche nach Updates fehlgeschlagen: %1</translation>
    </message>
    <message>
        <source>Download failed: %1</source>
        <translation>Download fehlgeschlagen: %1</translation>
    </message>
    <message>
        <source>Download rejected: not signed by the expected developer.
%1</source>
        <translation>Download abgelehnt: nicht vom erwarteten Entwickler signiert.
%1</translation>
    </message>
    <message>
        <source>Download rejected: bundle is v%1, manifest promised v%2.</source>
        <translation>Download abgelehnt: Das Bundle ist v%1, versprochen war v%2.</translation>
    </message>
    <message>
        <source>Can&apos;t replace %1 — no write permission.</source>
        <translation>%1 lässt sich nicht ersetzen – kein Schreibrecht.</translation>
    </message>
    <message>
        <source>Download rejected: checksum doesn&apos;t match the manifest.</source>
        <translation>Download abgelehnt: Die Prüfsumme passt nicht zum Manifest.</translation>
    </message>
</context>
<context>
    <name>velmora::UpdateManifest</name>
    <message>
        <source>The update feed cannot be read: %1.</source>
        <translation>Der Update-Feed ist nicht lesbar: %1.</translation>
    </message>
    <message>
        <source>The update feed cannot be read: it is not valid JSON.</source>
        <translation>Der Update-Feed ist nicht lesbar: Er ist kein gültiges JSON.</translation>
    </message>
    <message>
        <source>The update feed cannot be read: it is not a JSON object.</source>
        <translation>Der Update-Feed ist nicht lesbar: Er ist kein JSON-Objekt.</translation>
    </message>
</context>
<context>
    <name>velmora::Updater</name>
    <message>
        <source>Checking…</source>
        <translation>Suche läuft…</translation>
    </message>
    <message>
        <source>You&apos;re on the latest version (v%1).</source>
        <translation>Die Version (v%1) ist aktuell.</translation>
    </message>
    <message>
        <source>Downloading v%1…</source>
        <translation>v%1 wird geladen…</translation>
    </message>
    <message>
        <source>Verifying…</source>
        <translation>Wird geprüft…</translation>
    </message>
    <message>
        <source>Installing…</source>
        <translation>Wird installiert…</translation>
    </message>
    <message>
        <source>Update failed</source>
        <translation>Update fehlgeschlagen</translation>
    </message>
</context>
<context>
    <name>velmora::UpdatesSection</name>
    <message>
        <source>Updates</source>
        <translation>Updates</translation>
    </message>
    <message>
        <source>Check for updates automatically</source>
        <translation>Automatisch nach Updates suchen</translation>
    </message>
    <message>
        <source>Check Now</source>
        <translation>Jetzt suchen</translation>
    </message>
    <message>
        <source>Checking…</source>
        <translation>Suche läuft…</translation>
    </message>
    <message>
        <source>Update &amp;&amp; Relaunch</source>
        <translation>Aktualisieren &amp;&amp; neu starten</translation>
    </message>
    <message>
        <source>Feed URL</source>
        <translation>Feed-URL</translation>
    </message>
    <message>
        <source>Current version v%1. Downloads are only installed if their checksum matches the feed and the bundle is signed by team %2</source>
        <translation>Aktuelle Version v%1. Downloads werden nur installiert, wenn ihre Prüfsumme zum Feed passt und das Bundle vom Team %2 signiert ist</translation>
    </message>
    <message>
        <source>Download progress</source>
        <translation>Fortschritt des Downloads</translation>
    </message>
    <message>
        <source>v%1 available</source>
        <translation>v%1 verfügbar</translation>
    </message>
</context>
<context>
    <name>velmora::VelmoraApp</name>
    <message>
        <source>Import Complete</source>
        <translation>Import abgeschlossen</translation>
    </message>
</context>
</TS>
