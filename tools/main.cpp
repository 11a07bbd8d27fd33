#include <iostream>

#include "run.hpp"

int main(int argc, char** argv) {
    std::ios::sync_with_stdio(false);
    return bradep::run({argv + 1, argv + argc}, std::cin, std::cout, std::cerr);
}
