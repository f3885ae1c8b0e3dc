// What the library network.so exports.
#include "platform/qt/QtHttpClient.h"

extern "C" [[gnu::visibility("default")]] velmora::HttpClient* velmoraMakeHttpClient() {
    return new velmora::QtHttpClient;
}
