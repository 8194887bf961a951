// The station's command line.
#include <QCoreApplication>

#include <cstdio>

int main(int argc, char **argv) {
    QCoreApplication app(argc, argv);
    std::fprintf(stderr, "usage: scanctl COMMAND [ARGS]\n");
    return 2;
}
