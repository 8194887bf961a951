#include "vectorize/who_identity.h"

#include <atomic>

namespace {
std::atomic<int> g_package{0};
}

int WHO_Identity::package() { return g_package.load(); }
void WHO_Identity::setPackage(int package) { g_package.store(package); }
