// Writes files with random values of every root, and prints the seed: random_values DIR

#include "tests/random_values.hpp"
#include <sml/inspect/type.hpp>
#include "tests/inspect/real_roots.hpp"
#include "tests/runs.hpp"

#include <fstream>
#include <string>

int main(int, char** arguments) {
    RandomValues random(runs::seed());
    int const    values = runs::count(4, 40);
    for (RealRoot const& root : real_roots())
        for (int i = 0; i < values; ++i) {
            std::ofstream file(std::string(arguments[1]) + '/' + root.stem + ".random" +
                                   std::to_string(i) + ".bin",
                               std::ios::binary);
            file << root.random_bytes(random);
            if (!file.flush()) return 1;
        }
    return 0;
}
