#include <array>
#include <bit>
#include <cstring>
#include <system_error>
#include <thread>
#include <unordered_map>
#include <unordered_set>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

#include "MibrelCore/Analysis/TeskAnalysisEngine.h"
#include "MibrelCore/Analysis/TeskAnalysisSupport.h"

namespace mibrel {
namespace analysis {

std::int64_t wordCount(std::string_view text) {
    return static_cast<std::int64_t>(platform::text::whitespaceSeparatedRunCount(text));
}

} // namespace analysis

namespace TeskAnalysisEngine {
namespace {

constexpr std::array<std::string_view, 78> kStopwords{
    "a",     "an",    "and",  "are",  "as",    "at",    "be",    "been",    "but",  "by",   "can",  "could", "did",
    "do",    "does",  "for",  "from", "had",   "has",   "have",  "he",      "her",  "here", "him",  "his",   "how",
    "i",     "if",    "in",   "into", "is",    "it",    "its",   "just",    "me",   "more", "most", "my",    "no",
    "not",   "of",    "on",   "or",   "our",   "out",   "she",   "so",      "some", "than", "that", "the",   "their",
    "them",  "then",  "there", "these", "they", "this", "those", "through", "to",   "too",  "up",   "us",    "very",
    "was",   "we",    "were", "what", "when",  "where", "who",   "why",     "will", "with", "would", "you",  "your"};

const std::unordered_set<std::string_view>& stopwords() {
    static const std::unordered_set<std::string_view> words(kStopwords.begin(), kStopwords.end());
    return words;
}

bool isWordByte(char byte) {
    return (byte >= 'a' && byte <= 'z') || (byte >= '0' && byte <= '9') || byte == '\'' || byte == '-';
}

bool isDigit(char byte) { return byte >= '0' && byte <= '9'; }

// Apostrophes and hyphens go from both ends; what is left must have two characters or more.
inline __attribute__((always_inline)) std::string_view trimmedPiece(std::string_view piece) {
    while (!piece.empty() && (piece.front() == '\'' || piece.front() == '-')) piece.remove_prefix(1);
    while (!piece.empty() && (piece.back() == '\'' || piece.back() == '-')) piece.remove_suffix(1);
    return piece.size() < 2 ? std::string_view() : piece;
}

// A word survives unless it is a stop word or digits alone.
bool isKept(std::string_view piece) {
    return !stopwords().contains(piece) && !std::all_of(piece.begin(), piece.end(), isDigit);
}

// Calls `visit` with each piece of two or more characters, trimmed but not yet judged.
// After lower-casing, only ASCII letters, digits, apostrophes and hyphens can be part of a
// word, so every other byte (all of a non-ASCII character's bytes included) separates words.
bool isAscii(std::string_view text) {
    std::size_t pos = 0;
#if defined(__SSE2__)
    __m128i high = _mm_setzero_si128();
    for (; pos + 16 <= text.size(); pos += 16) {
        high = _mm_or_si128(high, _mm_loadu_si128(reinterpret_cast<const __m128i*>(text.data() + pos)));
    }
    if (_mm_movemask_epi8(high) != 0) return false;
#endif
    return std::all_of(text.begin() + static_cast<std::ptrdiff_t>(pos), text.end(),
                       [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

template <class Visit>
void forEachPiece(std::string_view text, Visit visit) {
    thread_local std::string lower;
    if (isAscii(text)) {
        lower.assign(text);
        for (char& c : lower) c = (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c;
    } else {
        lower = platform::text::lowercased(text);
    }
    const std::string_view view(lower);
    std::size_t start = 0;
    for (std::size_t pos = 0; pos <= view.size(); ++pos) {
        if (pos < view.size() && isWordByte(view[pos])) continue;
        if (pos > start) {
            if (const std::string_view piece = trimmedPiece(view.substr(start, pos - start)); !piece.empty()) visit(piece);
        }
        start = pos + 1;
    }
}

template <class Visit>
void forEachToken(std::string_view text, Visit visit) {
    forEachPiece(text, [&visit](std::string_view piece) {
        if (isKept(piece)) visit(piece);
    });
}

// Lower-case ASCII word bytes; 0 for every byte that separates words.
constexpr std::array<char, 256> kWordByte = [] {
    std::array<char, 256> table{};
    for (int c = 'a'; c <= 'z'; ++c) table[static_cast<std::size_t>(c)] = static_cast<char>(c);
    for (int c = 'A'; c <= 'Z'; ++c) table[static_cast<std::size_t>(c)] = static_cast<char>(c - 'A' + 'a');
    for (int c = '0'; c <= '9'; ++c) table[static_cast<std::size_t>(c)] = static_cast<char>(c);
    table['\''] = '\'';
    table['-'] = '-';
    return table;
}();

char wordByte(char byte) { return kWordByte[static_cast<unsigned char>(byte)]; }

// Packed ASCII word bytes lower-cased; adding to each byte never carries into the next.
std::uint64_t lowerPacked(std::uint64_t bytes) {
    constexpr std::uint64_t ones = 0x0101010101010101ull;
    const std::uint64_t atLeastA = bytes + ones * (0x80 - 'A');
    const std::uint64_t pastZ = bytes + ones * (0x80 - 'Z' - 1);
    return bytes | (((atLeastA & ~pastZ) & (ones * 0x80)) >> 2);
}

// Up to eight bytes of a word, lower-cased, packed into one integer (first byte lowest).
// `wide` says eight bytes may be read at `data`: one load instead of a byte loop.
std::uint64_t packedLower(const char* data, std::size_t length, bool wide) {
    std::uint64_t bytes = 0;
    if (wide) {
        std::memcpy(&bytes, data, 8);
        if (length < 8) bytes &= (std::uint64_t{1} << (8 * length)) - 1;
    } else {
        for (std::size_t i = 0; i < length; ++i) bytes |= std::uint64_t{static_cast<unsigned char>(data[i])} << (8 * i);
    }
    return lowerPacked(bytes);
}

// Masks keeping the bytes of a word of length 0 to 16 in its first and second eight bytes.
constexpr auto kFirstMask = [] {
    std::array<std::uint64_t, 17> masks{};
    for (std::size_t n = 0; n <= 16; ++n) masks[n] = n >= 8 ? ~std::uint64_t{0} : (std::uint64_t{1} << (8 * n)) - 1;
    return masks;
}();
constexpr auto kSecondMask = [] {
    std::array<std::uint64_t, 17> masks{};
    for (std::size_t n = 9; n <= 16; ++n) masks[n] = n >= 16 ? ~std::uint64_t{0} : (std::uint64_t{1} << (8 * (n - 8))) - 1;
    return masks;
}();

// Eight readable bytes at `data`, masked, lower-cased.
std::uint64_t lowerWide(const char* data, std::uint64_t mask) {
    std::uint64_t bytes = 0;
    std::memcpy(&bytes, data, 8);
    return lowerPacked(bytes & mask);
}

// Counts words in an open-addressing table: a corpus has millions of words but only
// thousands of distinct ones, so nearly every step is a hit in a table that stays in
// cache. A slot holds a word's first sixteen bytes packed into two integers, so nearly
// every word compares in registers; the bytes themselves sit in one shared buffer. Stop
// words and numbers are counted too and dropped once at the end, instead of looked up
// per word.
class WordCounter {
public:
    WordCounter() : m_slots(std::size_t{1} << kInitialBits) {}

    // A word of `length` bytes at `data`, any case; `readable` bytes may be read from `data`.
    void add(const char* data, std::size_t length, std::size_t readable, std::int64_t count = 1) {
        Key key{0, 0, length, 0};
        if (length <= 16) {
            // The common case without branches on the length: two loads, two masks. A word
            // near the end of its text is copied out first so that sixteen bytes can be read.
            std::array<char, 16> padded{};
            if (readable < 16) {
                std::memcpy(padded.data(), data, length);
                data = padded.data();
            }
            key.first = lowerWide(data, kFirstMask[length]);
            key.second = lowerWide(data + 8, kSecondMask[length]);
        } else {
            key.first = packedLower(data, 8, readable >= 8);
            key.second = packedLower(data + 8, 8, readable >= 16);
        }
        // One multiply spreads every bit into the high bits, which pick the slot.
        std::uint64_t mixed = key.first ^ std::rotl(key.second, 29) ^ (std::uint64_t{length} << 56);
        for (std::size_t at = 16; at < length; at += 8) {
            mixed = (mixed ^ packedLower(data + at, std::min<std::size_t>(length - at, 8), readable >= at + 8)) *
                    0x9E3779B97F4A7C15ull;
        }
        key.hash = mixed * 0x9E3779B97F4A7C15ull;
        const std::size_t last = m_slots.size() - 1;
        for (std::size_t index = slotOf(key.hash);; index = (index + 1) & last) {
            Slot& slot = m_slots[index];
            if (slot.count == 0) {
                insert(slot, key, data, count);
                return;
            }
            if (slot.first == key.first && slot.second == key.second && slot.length == length &&
                (length <= 16 || sameTail(slot, data))) {
                slot.count += count;
                return;
            }
        }
    }

    void merge(const WordCounter& other) {
        other.forEach([this](std::string_view word, std::int64_t count) { add(word.data(), word.size(), 0, count); });
    }

    template <class Visit>
    void forEach(Visit visit) const {
        for (const Slot& slot : m_slots) {
            if (slot.count > 0) visit(wordAt(slot), slot.count);
        }
    }

private:
    static constexpr unsigned kInitialBits = 13;

    struct Key {
        std::uint64_t first;
        std::uint64_t second;
        std::size_t length;
        std::uint64_t hash;
    };
    struct Slot {
        std::uint64_t first = 0;
        std::uint64_t second = 0;
        std::int64_t count = 0;
        std::uint64_t hash = 0;
        std::size_t offset = 0;
        std::size_t length = 0;
    };

    bool sameTail(const Slot& slot, const char* data) const {
        const std::string_view stored = wordAt(slot);
        for (std::size_t i = 16; i < stored.size(); ++i) {
            if (stored[i] != wordByte(data[i])) return false;
        }
        return true;
    }

    void insert(Slot& slot, const Key& key, const char* data, std::int64_t count) {
        slot = {key.first, key.second, count, key.hash, m_bytes.size(), key.length};
        for (std::size_t i = 0; i < key.length; ++i) m_bytes.push_back(wordByte(data[i]));
        if (++m_used * 2 > m_slots.size()) grow();
    }

    std::size_t slotOf(std::uint64_t hash) const { return static_cast<std::size_t>(hash >> m_shift); }

    void grow() {
        std::vector<Slot> old(m_slots.size() * 2);
        old.swap(m_slots);
        --m_shift;
        for (const Slot& slot : old) {
            if (slot.count == 0) continue;
            std::size_t index = slotOf(slot.hash);
            while (m_slots[index].count != 0) index = (index + 1) & (m_slots.size() - 1);
            m_slots[index] = slot;
        }
    }

    std::string_view wordAt(const Slot& slot) const { return std::string_view(m_bytes).substr(slot.offset, slot.length); }

    std::vector<Slot> m_slots;
    std::string m_bytes;
    std::size_t m_used = 0;
    unsigned m_shift = 64 - kInitialBits;
};

// Bit i set where byte i of the sixteen at `data` can be part of a word (ASCII input).
inline __attribute__((always_inline)) unsigned wordByteMask(const char* data) {
#if defined(__SSE2__)
    const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(data));
    const __m128i folded = _mm_or_si128(bytes, _mm_set1_epi8(0x20));
    const __m128i letter = _mm_and_si128(_mm_cmpgt_epi8(folded, _mm_set1_epi8('a' - 1)), _mm_cmplt_epi8(folded, _mm_set1_epi8('z' + 1)));
    const __m128i digit = _mm_and_si128(_mm_cmpgt_epi8(bytes, _mm_set1_epi8('0' - 1)), _mm_cmplt_epi8(bytes, _mm_set1_epi8('9' + 1)));
    const __m128i mark = _mm_or_si128(_mm_cmpeq_epi8(bytes, _mm_set1_epi8('\'')), _mm_cmpeq_epi8(bytes, _mm_set1_epi8('-')));
    return static_cast<unsigned>(_mm_movemask_epi8(_mm_or_si128(_mm_or_si128(letter, digit), mark)));
#else
    unsigned mask = 0;
    for (unsigned i = 0; i < 16; ++i) mask |= unsigned{wordByte(data[i]) != 0} << i;
    return mask;
#endif
}

// Bit i set where byte i of the sixty-four at `data` can be part of a word (ASCII input).
inline __attribute__((always_inline)) std::uint64_t wordByteMask64(const char* data) {
    return std::uint64_t{wordByteMask(data)} | (std::uint64_t{wordByteMask(data + 16)} << 16) |
           (std::uint64_t{wordByteMask(data + 32)} << 32) | (std::uint64_t{wordByteMask(data + 48)} << 48);
}

// Finds the words of plain ASCII text sixty-four bytes at a time, reading them in place.
// Word starts and ends come out of each block as bit masks, so the walk branches once per
// word rather than on every byte, whatever the words' lengths.
class PieceScanner {
public:
    PieceScanner(std::string_view text, WordCounter& counter) : m_text(text), m_counter(counter) {}

    void run() {
        std::size_t base = 0;
        for (; base + 64 <= m_text.size(); base += 64) scanBlock(base, wordByteMask64(m_text.data() + base));
        if (base < m_text.size()) {
            // The last bytes, padded with separators, so a word running to the end is closed.
            std::array<char, 64> tail;
            tail.fill(' ');
            std::memcpy(tail.data(), m_text.data() + base, m_text.size() - base);
            scanBlock(base, wordByteMask64(tail.data()));
        }
        if (m_open) finish(m_start, m_text.size());
    }

private:
    void scanBlock(std::size_t base, std::uint64_t mask) {
        const std::uint64_t previous = (mask << 1) | m_carry;
        std::uint64_t starts = mask & ~previous;
        std::uint64_t ends = ~mask & previous;
        m_carry = mask >> 63;
        if (m_open) {
            if (ends == 0) return; // the word goes on through the whole block
            finish(m_start, base + static_cast<std::size_t>(std::countr_zero(ends)));
            ends &= ends - 1;
            m_open = false;
        }
        while (starts != 0) {
            const std::size_t start = base + static_cast<std::size_t>(std::countr_zero(starts));
            starts &= starts - 1;
            if (ends == 0) {
                m_start = start;
                m_open = true;
                return;
            }
            finish(start, base + static_cast<std::size_t>(std::countr_zero(ends)));
            ends &= ends - 1;
        }
    }

    void finish(std::size_t start, std::size_t end) {
        const std::string_view piece = trimmedPiece(m_text.substr(start, end - start));
        if (piece.empty()) return;
        const auto offset = static_cast<std::size_t>(piece.data() - m_text.data());
        m_counter.add(piece.data(), piece.size(), m_text.size() - offset);
    }

    std::string_view m_text;
    WordCounter& m_counter;
    std::size_t m_start = 0;
    std::uint64_t m_carry = 0;
    bool m_open = false;
};

// Text with characters beyond ASCII is lower-cased as a whole first (that can turn a
// non-ASCII letter into an ASCII one) and takes the simple walk.
void countPieces(std::string_view text, WordCounter& counter) {
    if (!isAscii(text)) {
        forEachPiece(text, [&counter](std::string_view piece) { counter.add(piece.data(), piece.size(), 0); });
        return;
    }
    PieceScanner(text, counter).run();
}

// The codes a theme reaches: its own and those of its categories.
std::unordered_set<Uuid> themeCodes(const TeskWorkspace& workspace, const Uuid& themeID) {
    const auto theme = std::find_if(workspace.themes.begin(), workspace.themes.end(),
                                    [&](const TeskTheme& t) { return t.id == themeID; });
    if (theme == workspace.themes.end()) return {};
    std::unordered_set<Uuid> codes(theme->codeIDs.begin(), theme->codeIDs.end());
    const std::unordered_set<Uuid> categories(theme->categoryIDs.begin(), theme->categoryIDs.end());
    for (const TeskCategory& category : workspace.categories) {
        if (categories.contains(category.id)) codes.insert(category.codeIDs.begin(), category.codeIDs.end());
    }
    return codes;
}

bool hasExcerpt(const TeskCodeApplication& application) {
    return application.excerpt && !platform::text::isBlank(*application.excerpt);
}

// The texts of the segments these applications point at (first match in each
// transcript), reading only the transcripts of sources that are pointed at.
std::unordered_map<analysis::SegmentKey, std::string_view, analysis::SegmentKeyHash> segmentTexts(
    const TeskAnalysisCorpus& corpus, const std::vector<const TeskCodeApplication*>& applications) {
    std::unordered_map<analysis::SegmentKey, std::string_view, analysis::SegmentKeyHash> texts;
    std::unordered_set<Uuid> sources;
    for (const TeskCodeApplication* application : applications) {
        if (hasExcerpt(*application)) continue;
        sources.insert(application->response.sourceID);
        texts.try_emplace(analysis::keyOf(application->response), std::string_view());
    }
    std::unordered_set<analysis::SegmentKey, analysis::SegmentKeyHash> found;
    for (const Uuid& sourceID : sources) {
        const auto transcript = corpus.transcripts.find(sourceID);
        if (transcript == corpus.transcripts.end()) continue;
        for (const TranscriptSegment& segment : transcript->second.segments) {
            const analysis::SegmentKey key{sourceID, segment.id};
            const auto wanted = texts.find(key);
            if (wanted != texts.end() && found.insert(key).second) wanted->second = segment.text;
        }
    }
    return texts;
}

// The sources split in two halves, counted side by side: the corpus is the one scope that
// reads every transcript.
WordCounter countCorpus(const TeskAnalysisCorpus& corpus) {
    const auto countRange = [&corpus](std::size_t first, std::size_t last, WordCounter& counts) {
        for (std::size_t i = first; i < last; ++i) {
            const auto found = corpus.transcripts.find(corpus.sources[i].id);
            if (found == corpus.transcripts.end()) continue;
            for (const TranscriptSegment& segment : found->second.segments) countPieces(segment.text, counts);
        }
    };
    const std::size_t half = corpus.sources.size() / 2;
    WordCounter first;
    WordCounter second;
    try {
        std::jthread helper(countRange, half, corpus.sources.size(), std::ref(second));
        countRange(0, half, first);
    } catch (const std::system_error&) {
        // No second thread to be had: count everything here.
        countRange(0, corpus.sources.size(), first);
    }
    first.merge(second);
    return first;
}

WordCounter countWords(const TeskAnalysisCorpus& corpus, const WordFrequencyScope& scope) {
    WordCounter counts;
    if (std::holds_alternative<CorpusScope>(scope)) return countCorpus(corpus);
    const std::unordered_set<Uuid> codes = std::holds_alternative<CodeScope>(scope)
                                               ? std::unordered_set<Uuid>{std::get<CodeScope>(scope).id}
                                               : themeCodes(corpus.workspace, std::get<ThemeScope>(scope).id);
    std::vector<const TeskCodeApplication*> scoped;
    for (const TeskCodeApplication& application : corpus.workspace.applications) {
        if (codes.contains(application.codeID)) scoped.push_back(&application);
    }
    const auto texts = segmentTexts(corpus, scoped);
    for (const TeskCodeApplication* application : scoped) {
        // A segment coded twice in scope is counted twice.
        countPieces(hasExcerpt(*application) ? std::string_view(*application->excerpt)
                                             : texts.at(analysis::keyOf(application->response)),
                    counts);
    }
    return counts;
}

} // namespace

std::vector<std::string> tokenize(std::string_view text) {
    std::vector<std::string> tokens;
    forEachToken(text, [&tokens](std::string_view token) { tokens.emplace_back(token); });
    return tokens;
}

std::vector<TeskWordFrequencyRow> wordFrequency(const TeskAnalysisCorpus& corpus, const WordFrequencyScope& scope,
                                                std::int64_t minCount, std::int64_t limit) {
    if (limit <= 0) return {};
    std::vector<TeskWordFrequencyRow> rows;
    countWords(corpus, scope).forEach([&](std::string_view word, std::int64_t count) {
        if (count >= minCount && isKept(word)) rows.push_back({std::string(word), count});
    });
    // Only the first `limit` rows are wanted: rank by count alone first, then order the
    // rows that can still make the cut (ties at the boundary included) by name.
    auto byCount = [](const auto& a, const auto& b) { return a.count > b.count; };
    if (static_cast<std::size_t>(limit) < rows.size()) {
        std::nth_element(rows.begin(), rows.begin() + (limit - 1), rows.end(), byCount);
        const std::int64_t boundary = rows[static_cast<std::size_t>(limit - 1)].count;
        std::erase_if(rows, [boundary](const auto& row) { return row.count < boundary; });
    }
    // Natural order can call distinct words equal ("a1", "a01"); their bytes settle it.
    std::sort(rows.begin(), rows.end(), [](const auto& a, const auto& b) {
        if (a.count != b.count) return a.count > b.count;
        const auto order = platform::text::localizedStandardCompare(a.word, b.word);
        return order != 0 ? order < 0 : a.word < b.word;
    });
    if (static_cast<std::size_t>(limit) < rows.size()) rows.resize(static_cast<std::size_t>(limit));
    return rows;
}

} // namespace TeskAnalysisEngine
} // namespace mibrel
