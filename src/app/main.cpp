#include <cstdio>

int main() {
  std::puts("zindlebop");
  return 0;
}
