// Text order by ICU: the "zh" collation at secondary strength, which ignores case and width but not accents.

#include <algorithm>
#include <array>
#include <atomic>
#include <memory>
#include <new>
#include <numeric>
#include <system_error>
#include <utility>

#include <unicode/coll.h>
#include <unicode/stringpiece.h>
#include <unicode/translit.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>
#include <unicode/uscript.h>

#include "automation/error.h"
#include "platform/system/collation.h"
#include "platform/system/icu_memory.h"
#include "text/ascii.h"
#include "text/blanks.h"

namespace vicenter::system {

namespace {

std::atomic<bool> pinyinLoadingIsOver{false};

icu::StringPiece Piece(std::string_view text) {
    return icu::StringPiece(text.data(), static_cast<std::int32_t>(text.size()));
}

std::string_view WithoutTrailingBlanks(std::string_view text) {
    return text::WithoutTrailing(text, text::kSpace);
}

// Words of the ledger whose characters ICU reads otherwise: it knows one reading a character.
constexpr std::pair<std::u16string_view, std::string_view> kReadings[] = {
    {u"银行", "yh"}, {u"分行", "fh"}, {u"支行", "zh"}, {u"总行", "zh"}, {u"会计", "kj"},
    {u"长期", "cq"}, {u"长途", "ct"}, {u"调整", "tz"}, {u"重组", "cz"}, {u"盛", "s"},
};

// What memory would have made available is not missing.
void MustBeThere(UErrorCode status, const char* otherwise) {
    if (status == U_MEMORY_ALLOCATION_ERROR) throw std::bad_alloc();
    if (U_FAILURE(status)) throw automation::Error(0, otherwise);
}

// Hiragana and half-width katakana become katakana, as they compare: a voiced mark of half width joins the
// letter before it.
void FoldKana(icu::UnicodeString& text) {
    constexpr char16_t kHalf[] =
        u"ヲァィゥェォャュョッーアイウエオカキクケコサシスセソタチツテトナニヌネノハヒフヘホマミムメモヤユヨ"
        u"ラリルレロワン";
    constexpr char16_t kVoiced = 0xFF9E;
    constexpr char16_t kHalfVoiced = 0xFF9F;
    const auto takesVoice = [](char16_t letter) {
        return (letter >= u'カ' && letter <= u'ト') || (letter >= u'ハ' && letter <= u'ホ');
    };
    for (std::int32_t i = 0; i < text.length(); ++i) {
        const char16_t unit = text.charAt(i);
        if ((unit >= 0x3041 && unit <= 0x3096) || unit == 0x309D || unit == 0x309E)
            text.setCharAt(i, static_cast<char16_t>(unit + 0x60));
        if (unit < 0xFF66 || unit > 0xFF9D) continue;
        char16_t full = kHalf[unit - 0xFF66];
        const char16_t mark = i + 1 < text.length() ? text.charAt(i + 1) : u'\0';
        if (mark == kVoiced && takesVoice(full)) {
            ++full;
        } else if (mark == kVoiced && full == u'ウ') {
            full = u'ヴ';
        } else if (mark == kHalfVoiced && full >= u'ハ' && full <= u'ホ') {
            full = static_cast<char16_t>(full + 2);
        } else {
            text.setCharAt(i, full);
            continue;
        }
        text.setCharAt(i, full);
        text.remove(i + 1, 1);
    }
}

class IcuCollator : public Collator {
  public:
    IcuCollator() {
        GiveIcuItsReserve();
        UErrorCode status = U_ZERO_ERROR;
        collator_.reset(icu::Collator::createInstance(icu::Locale("zh", "CN"), status));
        MustBeThere(status, "The Chinese collation is not available.");
        collator_->setStrength(icu::Collator::SECONDARY);
        // Letters stand before Chinese characters, as SQL Server has them; ICU's own order is the other way
        // round.
        const std::int32_t scripts[] = {USCRIPT_LATIN, USCRIPT_HAN};
        collator_->setReorderCodes(scripts, 2, status);
        MustBeThere(status, "The Chinese collation is not available.");
        RankAscii();
    }

    int Compare(std::string_view a, std::string_view b) const override {
        a = WithoutTrailingBlanks(a);
        b = WithoutTrailingBlanks(b);
        if (a == b) return 0;
        if (const int quick = CompareAscii(a, b); quick != kUndecided) return quick;
        UErrorCode status = U_ZERO_ERROR;
        const int order = collator_->compareUTF8(Piece(a), Piece(b), status);
        if (U_FAILURE(status)) throw std::bad_alloc();  // nothing else can fail here
        return order;
    }

    std::string Fold(std::string_view text) const override { return Folded(text, true); }

    // Without case and width, and with kana as they compare; initials leave kana as they stand.
    std::string Folded(std::string_view text, bool withKana) const {
        std::string result(text);
        bool ascii = true;
        for (char& c : result) {
            c = text::LowerAscii(c);
            ascii = ascii && static_cast<unsigned char>(c) < 0x80;
        }
        if (ascii) return result;
        icu::UnicodeString wide = icu::UnicodeString::fromUTF8(Piece(text));
        for (std::int32_t i = 0; i < wide.length(); ++i) {
            const char16_t unit = wide.charAt(i);
            if (unit >= 0xFF01 && unit <= 0xFF5E) wide.setCharAt(i, static_cast<char16_t>(unit - 0xFEE0));
            if (unit == 0x3000) wide.setCharAt(i, u' ');
        }
        if (withKana) FoldKana(wide);
        wide.foldCase();
        if (wide.isBogus()) throw std::bad_alloc();
        result.clear();
        wide.toUTF8String(result);
        return result;
    }

    std::string PinyinInitials(std::string_view text) const override {
        const icu::UnicodeString wide = icu::UnicodeString::fromUTF8(Piece(text));
        if (wide.isBogus()) throw std::bad_alloc();
        std::string result;
        for (std::int32_t i = 0; i < wide.length();) {
            if (const std::int32_t taken = TakeReading(wide, i, result)) {
                i += taken;
                continue;
            }
            const UChar32 c = wide.char32At(i);
            i += U16_LENGTH(c);
            if (c < 0x80) {
                const char letter = text::LowerAscii(static_cast<char>(c));
                if ((letter >= '0' && letter <= '9') || (letter >= 'a' && letter <= 'z')) result += letter;
            } else if (u_hasBinaryProperty(c, UCHAR_IDEOGRAPHIC)) {
                if (const char initial = InitialOf(c); initial != kNoInitial) result += initial;
            } else if (u_isalnum(c)) {
                icu::UnicodeString one(c);
                std::string utf8;
                result += Folded(one.toUTF8String(utf8), false);
            }
        }
        return result;
    }

  private:
    static constexpr int kUndecided = 2;

    // ASCII texts compare by a table: the same order as the collation's, found by sorting the characters
    // once. Characters that the collation ignores have no rank and send the texts the long way.
    void RankAscii() {
        std::array<int, 128> order{};
        std::iota(order.begin(), order.end(), 0);
        const auto compare = [&](int x, int y) {
            UErrorCode status = U_ZERO_ERROR;
            const char a = static_cast<char>(x);
            const char b = static_cast<char>(y);
            const int found =
                collator_->compareUTF8(icu::StringPiece(&a, 1), icu::StringPiece(&b, 1), status);
            if (U_FAILURE(status)) throw std::bad_alloc();
            return found;
        };
        std::stable_sort(order.begin(), order.end(), [&](int x, int y) { return compare(x, y) < 0; });
        const icu::StringPiece nothing("", 0);
        int rank = 1;
        for (std::size_t i = 0; i < order.size(); ++i) {
            if (i > 0 && compare(order[i - 1], order[i]) != 0) ++rank;
            const char c = static_cast<char>(order[i]);
            UErrorCode status = U_ZERO_ERROR;
            const bool ignored =
                collator_->compareUTF8(icu::StringPiece(&c, 1), nothing, status) == UCOL_EQUAL;
            if (U_FAILURE(status)) throw std::bad_alloc();
            ranks_[static_cast<std::size_t>(order[i])] = ignored ? 0 : static_cast<unsigned char>(rank);
        }
    }

    int CompareAscii(std::string_view a, std::string_view b) const {
        const std::size_t common = std::min(a.size(), b.size());
        int found = 0;
        for (std::size_t i = 0; i < common; ++i) {
            const auto x = static_cast<unsigned char>(a[i]);
            const auto y = static_cast<unsigned char>(b[i]);
            if (x >= 128 || y >= 128 || ranks_[x] == 0 || ranks_[y] == 0) return kUndecided;
            if (found == 0 && ranks_[x] != ranks_[y]) found = ranks_[x] < ranks_[y] ? -1 : 1;
        }
        // What follows must be plain too: a combining mark behind the difference could still change it.
        const std::string_view rest = a.size() > b.size() ? a.substr(common) : b.substr(common);
        for (const char c : rest) {
            const auto x = static_cast<unsigned char>(c);
            if (x >= 128 || ranks_[x] == 0) return kUndecided;
        }
        if (found != 0) return found;
        return a.size() == b.size() ? 0 : (a.size() < b.size() ? -1 : 1);
    }

    static std::int32_t TakeReading(const icu::UnicodeString& text, std::int32_t at, std::string& result) {
        for (const auto& [word, initials] : kReadings) {
            if (text.charAt(at) != word.front()) continue;
            const auto length = static_cast<std::int32_t>(word.size());
            if (text.compare(at, length, icu::UnicodeString(word.data(), length)) == 0) {
                result += initials;
                return length;
            }
        }
        return 0;
    }

    static constexpr char kNoInitial = 1;
    static constexpr UChar32 kFirstKept = 0x4E00;
    static constexpr UChar32 kLastKept = 0x9FFF;

    // A transliteration costs some 10 us; lists of thousands of names repeat the same few characters, so that
    // those of the common block are kept, 0 standing for not yet known.
    static char InitialOf(UChar32 c) {
        if (c < kFirstKept || c > kLastKept) return Transliterated(c);
        static std::array<std::atomic<char>, kLastKept - kFirstKept + 1> kept{};
        std::atomic<char>& initial = kept[static_cast<std::size_t>(c - kFirstKept)];
        char known = initial.load(std::memory_order_relaxed);
        if (known == 0) {
            known = Transliterated(c);
            initial.store(known, std::memory_order_relaxed);
        }
        return known;
    }

    static char Transliterated(UChar32 c) {
        icu::UnicodeString one(c);
        Pinyin().transliterate(one);
        return one.length() > 0 && one.charAt(0) < 0x80 ? static_cast<char>(one.charAt(0)) : kNoInitial;
    }

    static const icu::Transliterator& Pinyin() {
        static const std::unique_ptr<icu::Transliterator> transliterator = [] {
            GiveIcuItsReserve();
            UErrorCode status = U_ZERO_ERROR;
            std::unique_ptr<icu::Transliterator> created(
                icu::Transliterator::createInstance("Han-Latin; Latin-ASCII; Lower", UTRANS_FORWARD, status));
            MustBeThere(status, "The pinyin transliteration is not available.");
            pinyinLoadingIsOver = true;
            return created;
        }();
        return *transliterator;
    }

    std::unique_ptr<icu::Collator> collator_;
    std::array<unsigned char, 128> ranks_{};
};

}  // namespace

const Collator& Collator::Chinese() {
    static const IcuCollator collator;
    return collator;
}

PinyinLoading::PinyinLoading() {
    if (IsOver()) return;
    try {
        thread_ = std::thread([] {
            try {
                Collator::Chinese().PinyinInitials("一");
            } catch (const std::exception&) {
                // Whoever asks for initials is told.
                pinyinLoadingIsOver = true;
            }
        });
    } catch (const std::system_error&) {
        // No thread to be had: loaded by the first who asks.
        pinyinLoadingIsOver = true;
    }
}

PinyinLoading::~PinyinLoading() {
    if (thread_.joinable()) thread_.join();
}

bool PinyinLoading::IsOver() {
    return pinyinLoadingIsOver;
}

}  // namespace vicenter::system
