#include "app/RunVelmora.h"

int main(int argc, char** argv) {
    return velmora::runVelmora(argc, argv, {});
}
