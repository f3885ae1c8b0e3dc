# Whom the program trusts with its updates, and where it looks for them. Whoever ships Velmora sets the three.

set(VELMORA_UPDATE_HOST "updates.velmora.example"
    CACHE STRING "Host of the update feed, https://HOST/velmora/appcast.json. The default exists nowhere")
set(VELMORA_TEAM_IDENTIFIER "VELMORA000"
    CACHE STRING "Ten characters: the developer team that must have signed an update (macOS), the identity that its \
seal must be of (Linux)")
set(VELMORA_UPDATE_PUBLIC_KEY ""
    CACHE STRING "OpenSSH public key, one line, that an update's seal must be made with (Linux). With none, as by \
default, every update is rejected")

if(NOT VELMORA_UPDATE_HOST MATCHES "^[A-Za-z0-9.:-]+$")
  message(FATAL_ERROR "VELMORA_UPDATE_HOST is a host name, with a port if need be: '${VELMORA_UPDATE_HOST}'")
endif()
string(LENGTH "${VELMORA_TEAM_IDENTIFIER}" length)
if(NOT VELMORA_TEAM_IDENTIFIER MATCHES "^[A-Z0-9]+$" OR NOT length EQUAL 10)
  message(FATAL_ERROR "VELMORA_TEAM_IDENTIFIER is ten capital letters and digits: '${VELMORA_TEAM_IDENTIFIER}'")
endif()
if(NOT VELMORA_UPDATE_PUBLIC_KEY MATCHES "^([a-z0-9@.-]+ [A-Za-z0-9+/=]+( [^\"\\\r\n;]*)?)?$")
  message(FATAL_ERROR "VELMORA_UPDATE_PUBLIC_KEY is one line as in a .pub file: '${VELMORA_UPDATE_PUBLIC_KEY}'")
endif()
