// The log configuration block, which any process may write to: what is asked of a damaged one, and
// what is set in it, against a plain reading of its bytes.
//
// An input is a list of steps, each begun by a byte that tells which.
#include "log/dbg/LogConfigBlock.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tests/fuzz/Input.h"
#include "tests/fuzz/Require.h"
#include "tests/support/LogBlockBytes.h"

namespace {

using LOGUTILS::LogConfigBlock;
using LOGUTILS::LogModuleEntry;
using LOGUTILS::WideString;
using Mirqos::Test::Input;
using Mirqos::Test::LogBlockBytes;
using Mirqos::Test::Require;

constexpr std::size_t kMostSteps = 32;  // a look through the whole block each

WideString Wide(const std::u16string& text) {
    return {text.begin(), text.end()};
}

/// A length and that many characters of a few: two names are often nearly the same.
std::u16string TakeText(Input& input, std::size_t longest) {
    constexpr char16_t alphabet[] = u"aAbB.\\@\u20AC";
    std::u16string text(input.Number() % (longest + 1), u'a');
    for (const char c : input.Bytes(input.Byte() % 8)) {
        text.insert(text.begin(), alphabet[static_cast<unsigned char>(c) % 8]);
    }
    return text;
}

bool EqualIgnoringCase(const std::u16string& left, const std::u16string& right) {
    const auto upper = [](std::u16string text) {
        for (char16_t& c : text) {
            c = c >= u'a' && c <= u'z' ? static_cast<char16_t>(c - u'a' + u'A') : c;
        }
        return text;
    };
    return upper(left) == upper(right);
}

/// The rules as the format page tells them, over bytes.
class Model {
public:
    explicit Model(unsigned char* bytes) : m_block(bytes) {}

    struct Place {
        std::size_t module = LogBlockBytes::kModules;
        bool found = false;
    };
    Place Find(const std::u16string& name) const {
        for (std::size_t module = 0; module < LogBlockBytes::kModules; ++module) {
            const std::u16string taken = m_block.Name(module);
            if (taken.empty()) {
                return {module, false};
            }
            if (EqualIgnoringCase(taken, name.substr(0, 63))) {
                return {module, true};
            }
        }
        return {};
    }

    std::optional<std::size_t> FindOrTake(const std::u16string& name) {
        const Place place = Find(name);
        if (name.empty() || place.module == LogBlockBytes::kModules) {
            return std::nullopt;
        }
        if (!place.found) {
            m_block.SetText(LogBlockBytes::NameAt(place.module), 64, name);
            m_block.SetNumber(LogBlockBytes::LevelAt(place.module), 0xFFFFFFFF);
            m_block.SetNumber(LogBlockBytes::FlagsAt(place.module), 0xFFFF);
        }
        return place.module;
    }

    void SetPath(const std::u16string& name, const std::u16string& path) {
        if (name.empty() || !m_block.GlobalPath().empty()) {
            m_block.SetText(LogBlockBytes::kGlobalPathAt, 512, path);
        } else if (const auto module = FindOrTake(name)) {
            m_block.SetText(LogBlockBytes::PathAt(*module), 512, path);
        }
    }

    std::optional<std::u16string> Path(const std::u16string& name, bool ignoreGlobal) const {
        const std::u16string global = m_block.GlobalPath();
        if (name.empty()) {
            return global;
        }
        const Place place = Find(name);
        const bool own = place.found && (m_block.Flags(place.module) & 1) == 0;
        if (!own && !global.empty() && !ignoreGlobal) {
            return global;
        }
        return place.found ? std::optional(m_block.Path(place.module)) : std::nullopt;
    }

    std::int32_t Level(const std::u16string& name) const {
        const Place place = Find(name);
        const bool own = place.found && (m_block.Flags(place.module) & 2) == 0;
        if (!own && m_block.GlobalLevel() != -1) {
            return m_block.GlobalLevel();
        }
        return place.found ? m_block.Level(place.module) : -1;
    }

    /// Takes the first entries for names of their own.
    void Crowd(std::size_t modules) {
        for (std::size_t module = 0; module < modules; ++module) {
            m_block.SetText(LogBlockBytes::NameAt(module), 64,
                            {u'#', static_cast<char16_t>(0x100 + module)});
        }
    }

private:
    LogBlockBytes m_block;
};

/// The block under test, and the bytes that it has to hold.
class Pair {
public:
    Pair() {
        LOGUTILS::ClearBlock(*m_block);
        std::memcpy(m_expected.data(), m_block.get(), m_expected.size());
    }

    void Step(Input& input) {
        switch (input.Byte() % 7) {
            case 0:
                Damage(input);
                break;
            case 1:
                m_model.Crowd(input.Number() % (LogBlockBytes::kModules + 1));
                TakeOver();
                break;
            case 2: {
                const std::u16string name = TakeText(input, 70);
                LogModuleEntry* entry = LOGUTILS::FindOrTakeModule(*m_block, Wide(name));
                RequireEntry(entry, m_model.FindOrTake(name));
                break;
            }
            case 3: {
                const std::u16string name = TakeText(input, 70);
                const std::u16string path = TakeText(input, 600);
                LOGUTILS::SetPath(*m_block, Wide(name), Wide(path));
                m_model.SetPath(name, path);
                break;
            }
            case 4: {
                const std::u16string name = TakeText(input, 70);
                const Model::Place place = m_model.Find(name);
                RequireEntry(LOGUTILS::FindModule(*m_block, Wide(name)),
                             place.found ? std::optional(place.module) : std::nullopt);
                break;
            }
            case 5: {
                const std::u16string name = TakeText(input, 70);
                const bool ignoreGlobal = input.Byte() % 2 != 0;
                const auto expected = m_model.Path(name, ignoreGlobal);
                Require(LOGUTILS::PathOf(*m_block, Wide(name), ignoreGlobal) ==
                            (expected ? std::optional(Wide(*expected)) : std::nullopt),
                        "a path is what the bytes say");
                break;
            }
            default: {
                const std::u16string name = TakeText(input, 70);
                Require(LOGUTILS::LevelOf(*m_block, Wide(name)) == m_model.Level(name),
                        "a level is what the bytes say");
                break;
            }
        }
        const bool intact = LogBlockBytes(m_expected.data()).Number(0) == LogBlockBytes::kMagic &&
                            LogBlockBytes(m_expected.data()).Number(LogBlockBytes::kEndMagicAt) ==
                                LogBlockBytes::kMagic;
        Require(LOGUTILS::IsIntact(*m_block) == intact, "a block is intact by both its magics");
        Require(std::memcmp(m_block.get(), m_expected.data(), m_expected.size()) == 0,
                "no other byte was changed");
    }

private:
    /// Bytes over one of the fields, or a unit over all of it and so over its terminator.
    void Damage(Input& input) {
        const std::size_t module = input.Number() % LogBlockBytes::kModules;
        const std::size_t fields[] = {
            LogBlockBytes::kMagicAt,        LogBlockBytes::kGlobalPathAt,
            LogBlockBytes::kGlobalLevelAt,  LogBlockBytes::NameAt(module),
            LogBlockBytes::PathAt(module),  LogBlockBytes::LevelAt(module),
            LogBlockBytes::FlagsAt(module), LogBlockBytes::kEndMagicAt};
        const std::size_t offset = fields[input.Byte() % 8];
        const std::size_t size = input.Byte();
        std::string bytes = input.Bytes(size % 16);
        if (size >= 128) {
            bytes.assign((size - 127) * 16, 'a');
        }
        std::memcpy(m_expected.data() + offset, bytes.data(),
                    std::min(bytes.size(), m_expected.size() - offset));
        TakeOver();
    }

    void TakeOver() { std::memcpy(m_block.get(), m_expected.data(), m_expected.size()); }

    void RequireEntry(const LogModuleEntry* entry, std::optional<std::size_t> module) {
        Require(entry == (module ? &m_block->m_modules[*module] : nullptr),
                "the entry is the one that the bytes tell");
    }

    std::unique_ptr<LogConfigBlock> m_block = std::make_unique<LogConfigBlock>();
    std::vector<unsigned char> m_expected = std::vector<unsigned char>(LogBlockBytes::kSize);
    Model m_model = Model(m_expected.data());
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Pair pair;
    Input input(data, size);
    for (std::size_t step = 0; step < kMostSteps && !input.AtEnd(); ++step) {
        pair.Step(input);
    }
    return 0;
}
