#include "toolkit/error.h"

#include <cstdio>
#include <cstdlib>

namespace orv {

void AssertionFailed(const char* expression, const char* file, int line) {
  std::fprintf(stderr, "%s:%d: assertion failed: %s\n", file, line, expression);
  std::abort();
}

}  // namespace orv
