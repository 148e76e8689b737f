// Makes the demo database that the tests copy, anew, in the file that is given.
#include <cstdlib>
#include <iostream>

#include "tests/support/desk_test.h"

int main(int count, char** arguments) try {
  if (count != 2) return EXIT_FAILURE;
  std::filesystem::remove(arguments[1]);
  orv::test::MakeTestDemo(arguments[1]);
  return EXIT_SUCCESS;
} catch (const std::exception& e) {
  std::cerr << e.what() << "\n";
  return EXIT_FAILURE;
}
