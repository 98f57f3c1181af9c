// Runs a fuzz target without a fuzzer, so that every build tries it for a moment:
//
//     TARGET CORPUS-FOLDER [ROUNDS [SEED]]    the corpus, then ROUNDS changed inputs
//     TARGET FILE                             one input, as a fuzzer left it
//
// An input is the same for the same corpus, seed and round. The one that ended the process is left
// in the file TARGET.crash beside the program.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

using Input = std::vector<std::uint8_t>;
using Random = std::mt19937_64;

constexpr std::size_t kLongest = 8192;

Input ReadInput(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

/// In the order of their names, so that a round means the same on every machine.
std::vector<Input> ReadCorpus(const std::filesystem::path& folder) {
    std::vector<std::filesystem::path> paths;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        paths.push_back(entry.path());
    }
    std::sort(paths.begin(), paths.end());
    std::vector<Input> corpus;
    std::transform(paths.begin(), paths.end(), std::back_inserter(corpus), ReadInput);
    return corpus;
}

std::size_t Below(Random& random, std::size_t end) {
    return static_cast<std::size_t>(random() % end);
}

std::ptrdiff_t Place(Random& random, const Input& input) {
    return static_cast<std::ptrdiff_t>(Below(random, input.size() + 1));
}

/// Puts a piece of `from` somewhere into `input`, or over what is there.
void Splice(Random& random, Input& input, const Input& from) {
    const std::size_t first = Below(random, from.size() + 1);
    const std::size_t last =
        first + Below(random, std::min<std::size_t>(from.size() - first, 64) + 1);
    const Input piece(from.begin() + static_cast<std::ptrdiff_t>(first),
                      from.begin() + static_cast<std::ptrdiff_t>(last));
    const std::ptrdiff_t place = Place(random, input);
    if (random() % 2 == 0) {
        input.insert(input.begin() + place, piece.begin(), piece.end());
        return;
    }
    const std::size_t over = std::min(piece.size(), input.size() - static_cast<std::size_t>(place));
    std::copy_n(piece.begin(), over, input.begin() + place);
}

void Change(Random& random, Input& input, const std::vector<Input>& corpus) {
    constexpr std::uint8_t telling[] = {0,    1,   '<',  '>',  '&',  '/',  ';',  ':', '"',
                                        '\'', ' ', 0x7F, 0x80, 0xC3, 0xED, 0xF4, 0xFF};
    switch (random() % 6) {
        case 0:  // one bit
            if (!input.empty()) {
                input[Below(random, input.size())] ^=
                    static_cast<std::uint8_t>(1u << Below(random, 8));
            }
            break;
        case 1:  // a byte that means something to parsers
            if (!input.empty()) {
                input[Below(random, input.size())] = telling[Below(random, std::size(telling))];
            }
            break;
        case 2:
            input.insert(input.begin() + Place(random, input), static_cast<std::uint8_t>(random()));
            break;
        case 3: {  // a piece less
            const std::ptrdiff_t place = Place(random, input);
            const std::size_t left = input.size() - static_cast<std::size_t>(place);
            const std::size_t size = Below(random, std::min<std::size_t>(left, 32) + 1);
            input.erase(input.begin() + place,
                        input.begin() + place + static_cast<std::ptrdiff_t>(size));
            break;
        }
        case 4:
            Splice(random, input, Input(input));
            break;
        default:
            Splice(random, input, corpus[Below(random, corpus.size())]);
            break;
    }
}

/// Calls the target with a block of exactly the input's size, so that a sanitizer sees what lies
/// beyond it.
void Try(const Input& input, const char* file) {
    if (file != nullptr) {
        std::ofstream(file, std::ios::binary)
            .write(reinterpret_cast<const char*>(input.data()),
                   static_cast<std::streamsize>(input.size()));
    }
    const Input exact(input);
    LLVMFuzzerTestOneInput(exact.data(), exact.size());
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        std::fprintf(stderr, "usage: %s CORPUS-FOLDER [ROUNDS [SEED [FILE]]] | FILE\n", argv[0]);
        return 2;
    }
    if (!std::filesystem::is_directory(argv[1])) {
        Try(ReadInput(argv[1]), nullptr);
        return 0;
    }
    const std::vector<Input> corpus = ReadCorpus(argv[1]);
    if (corpus.empty()) {
        std::fprintf(stderr, "no corpus in %s\n", argv[1]);
        return 1;
    }
    const unsigned long rounds = argc > 2 ? std::strtoul(argv[2], nullptr, 10) : 1000;
    const char* const file = argc > 4 ? argv[4] : nullptr;
    for (const Input& unchanged : corpus) {
        Try(unchanged, file);
    }
    Random random(argc > 3 ? std::strtoull(argv[3], nullptr, 10) : 1);
    Input input;
    for (unsigned long round = 0; round < rounds; ++round) {
        if (round % 8 == 0 || input.size() > kLongest) {
            input = corpus[Below(random, corpus.size())];
        }
        Change(random, input, corpus);
        Try(input, file);
    }
    std::printf("%zu inputs of the corpus and %lu changed ones\n", corpus.size(), rounds);
    return 0;
}
