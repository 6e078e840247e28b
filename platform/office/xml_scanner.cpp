#include "platform/office/xml_scanner.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <optional>

#include "platform/office/limits.h"
#include "text/ascii.h"

namespace vicenter::office {

namespace {

constexpr std::size_t kNone = static_cast<std::size_t>(-1);

// What may end a tag or change how its bytes are read.
constexpr std::array<bool, 256> kTagMarks = [] {
    std::array<bool, 256> marks{};
    for (const char c : {'"', '\'', '>', '<'})
        marks[static_cast<unsigned char>(c)] = true;
    return marks;
}();

bool IsSpace(char c) {
    return c == ' ' || c == '\n' || c == '\r' || c == '\t';
}

// Names of elements are a few characters long: looked through here, not by a call.
std::size_t ColonIn(std::string_view name) {
    std::size_t at = 0;
    while (at < name.size() && name[at] != ':')
        ++at;
    return at < name.size() ? at : std::string_view::npos;
}

std::string_view LocalName(std::string_view name) {
    const std::size_t colon = ColonIn(name);
    return colon == std::string_view::npos ? name : name.substr(colon + 1);
}

std::string_view Prefix(std::string_view name) {
    const std::size_t colon = ColonIn(name);
    return colon == std::string_view::npos ? std::string_view() : name.substr(0, colon);
}

constexpr std::string_view kBinding = "xmlns";
constexpr std::size_t kShortestBinding = std::string_view(R"( xmlns="")").size();
constexpr std::size_t kMaxBindings = 1000;

// The prefix that an attribute binds ("" for "xmlns" itself); nothing for any other attribute.
std::optional<std::string_view> BoundPrefix(std::string_view attribute) {
    if (attribute == kBinding) return std::string_view();
    if (Prefix(attribute) == kBinding) return LocalName(attribute);
    return std::nullopt;
}

}  // namespace

XmlScanner::XmlScanner(ByteSource& source) : source_(source), buffer_(kWindowBytes) {
    while (end_ < 4 && Refill()) {
    }
    const std::string_view head(buffer_.data(), end_);
    if (head.starts_with("\xEF\xBB\xBF")) {
        begin_ = 3;
    } else if (head.starts_with("\xFE\xFF") || head.starts_with("\xFF\xFE")) {
        FailDamaged("编码不受支持");
    }
    CheckDeclaration();
}

void XmlScanner::CheckDeclaration() {
    while (end_ - begin_ < 6 && Refill()) {
    }
    if (!std::string_view(buffer_.data() + begin_, end_ - begin_).starts_with("<?xml")) return;
    const std::size_t end = FindInWindow("?>", begin_);
    if (end == kNone) FailDamaged("XML 声明");
    std::string declaration(buffer_.data() + begin_, end - begin_);
    declaration = text::LowerAscii(declaration);
    const std::size_t encoding = declaration.find("encoding");
    if (encoding != std::string::npos && declaration.find("utf-8", encoding) == std::string::npos &&
        declaration.find("us-ascii", encoding) == std::string::npos) {
        FailDamaged("编码不受支持");
    }
    begin_ = end + 2;
}

bool XmlScanner::Refill() {
    if (ended_) return false;
    if (begin_ > 0) {
        std::memmove(buffer_.data(), buffer_.data() + begin_, end_ - begin_);
        end_ -= begin_;
        begin_ = 0;
    }
    if (end_ == buffer_.size()) {
        if (buffer_.size() * 2 > kMaxXmlTokenBytes) FailTooLarge();
        buffer_.resize(buffer_.size() * 2);
    }
    const std::size_t count = source_.Read(buffer_.data() + end_, buffer_.size() - end_);
    if (count == 0) {
        ended_ = true;
        return false;
    }
    end_ += count;
    return true;
}

// The searches give a place in the window as it is after refilling; `from` is counted from begin_ meanwhile.
std::size_t XmlScanner::FindInWindow(char wanted, std::size_t from) {
    std::size_t offset = from - begin_;
    while (true) {
        const void* found = std::memchr(buffer_.data() + begin_ + offset, wanted, end_ - begin_ - offset);
        if (found != nullptr) {
            return static_cast<std::size_t>(static_cast<const char*>(found) - buffer_.data());
        }
        offset = end_ - begin_;
        if (!Refill()) return kNone;
    }
}

std::size_t XmlScanner::FindInWindow(std::string_view wanted, std::size_t from) {
    const std::size_t start = from - begin_;
    std::size_t offset = start;
    while (true) {
        const std::string_view window(buffer_.data() + begin_, end_ - begin_);
        const std::size_t found = window.find(wanted, offset);
        if (found != std::string_view::npos) return begin_ + found;
        // The mark may lie across the border to what comes next.
        offset = window.size() < wanted.size() ? start : std::max(start, window.size() - wanted.size() + 1);
        if (!Refill()) return kNone;
    }
}

// The ">" that closes a tag; one inside a quoted attribute does not.
std::size_t XmlScanner::FindTagEnd(std::size_t from) {
    std::size_t offset = from - begin_;
    char quote = 0;
    while (true) {
        const char* base = buffer_.data() + begin_;
        const std::size_t size = end_ - begin_;
        for (; offset < size; ++offset) {
            const char c = base[offset];
            if (!kTagMarks[static_cast<unsigned char>(c)]) continue;
            if (quote != 0) {
                if (c == quote) quote = 0;
            } else if (c == '"' || c == '\'') {
                quote = c;
            } else if (c == '>') {
                return begin_ + offset;
            } else if (c == '<') {
                FailDamaged("XML 标记");
            }
        }
        if (!Refill()) return kNone;
    }
}

XmlScanner::Token XmlScanner::Next() {
    while (true) {
        const Token token = NextOfAny();
        if (token != Token::Start || !foreign_) return token;
        for (const std::size_t depth = Depth(); Depth() >= depth;) {
            if (NextOfAny() == Token::Finished) FailDamaged("XML 不完整");
        }
    }
}

XmlScanner::Token XmlScanner::NextOfAny() {
    if (pendingEnd_) {
        pendingEnd_ = false;
        openLengths_.pop_back();
        Unbind();
        return Token::End;  // open_ was never given the name
    }
    cdata_ = false;
    while (true) {
        if (begin_ == end_ && !Refill()) {
            if (!openLengths_.empty() || !rootSeen_) FailDamaged("XML 不完整");
            return Token::Finished;
        }
        if (buffer_[begin_] != '<') {
            std::size_t end = FindInWindow('<', begin_);
            if (end == kNone) end = end_;
            text_ = {buffer_.data() + begin_, end - begin_};
            begin_ = end;
            if (!openLengths_.empty()) return Token::Text;
            if (!std::all_of(text_.begin(), text_.end(), IsSpace)) FailDamaged("XML 结构");
            continue;
        }
        while (end_ - begin_ < 9 && Refill()) {
        }
        const std::string_view window(buffer_.data() + begin_, end_ - begin_);
        if (window.starts_with("</")) {
            const std::size_t end = FindInWindow('>', begin_);
            if (end == kNone) FailDamaged("XML 不完整");
            return EndTag(end);
        }
        if (window.starts_with("<!--")) {
            const std::size_t end = FindInWindow("-->", begin_ + 4);
            if (end == kNone) FailDamaged("XML 不完整");
            begin_ = end + 3;
            continue;
        }
        if (window.starts_with("<![CDATA[")) {
            const std::size_t end = FindInWindow("]]>", begin_ + 9);
            if (end == kNone || openLengths_.empty()) FailDamaged("XML 不完整");
            text_ = {buffer_.data() + begin_ + 9, end - begin_ - 9};
            begin_ = end + 3;
            cdata_ = true;
            return Token::Text;
        }
        if (window.starts_with("<!")) FailDamaged("不允许文档类型声明");
        if (window.starts_with("<?")) {
            const std::size_t end = FindInWindow("?>", begin_ + 2);
            if (end == kNone) FailDamaged("XML 不完整");
            begin_ = end + 2;
            continue;
        }
        const std::size_t end = FindTagEnd(begin_ + 1);
        if (end == kNone) FailDamaged("XML 不完整");
        return StartTag(end);
    }
}

XmlScanner::Token XmlScanner::StartTag(std::size_t end) {
    if (openLengths_.empty() && rootSeen_) FailDamaged("XML 结构");
    rootSeen_ = true;
    const char* first = buffer_.data() + begin_ + 1;
    const char* last = buffer_.data() + end;
    const bool empty = last > first && last[-1] == '/';
    if (empty) --last;
    const char* nameEnd = first;
    while (nameEnd < last && !IsSpace(*nameEnd))
        ++nameEnd;
    const std::string_view full(first, static_cast<std::size_t>(nameEnd - first));
    if (full.empty()) FailDamaged("XML 标记");
    name_ = LocalName(full);
    attributes_ = {nameEnd, static_cast<std::size_t>(last - nameEnd)};
    begin_ = end + 1;
    if (openLengths_.size() >= kMaxXmlDepth) FailTooLarge();
    openLengths_.push_back(static_cast<std::uint32_t>(full.size()));
    if (empty) {
        pendingEnd_ = true;
    } else {
        open_.append(full);
    }
    foreign_ = IsForeign(Prefix(full));
    return Token::Start;
}

bool XmlScanner::IsForeign(std::string_view prefix) {
    const bool isRoot = openLengths_.size() == 1;
    if (isRoot) rootPrefix_ = prefix;
    // Hardly any element but the root binds a prefix.
    if (attributes_.size() >= kShortestBinding && attributes_.find(kBinding) != std::string_view::npos) {
        if (isRoot) {
            ForEachAttribute([&](std::string_view name, std::string_view value) {
                if (BoundPrefix(name) == prefix) rootNamespace_ = value;
            });
        }
        ForEachAttribute([&](std::string_view name, std::string_view value) {
            const auto bound = BoundPrefix(name);
            if (!bound) return;
            if (bindings_.size() >= kMaxBindings) FailTooLarge();
            bindings_.push_back({openLengths_.size(), std::string(*bound), value == rootNamespace_});
        });
    }
    if (isRoot) rootBindings_ = bindings_.size();
    if (bindings_.size() == rootBindings_ && prefix == rootPrefix_) return false;
    const auto found = std::find_if(bindings_.rbegin(), bindings_.rend(),
                                    [prefix](const Binding& known) { return known.prefix == prefix; });
    return found == bindings_.rend() ? prefix != rootPrefix_ : !found->isRoots;
}

// Behind an End: what the element bound no longer holds.
void XmlScanner::Unbind() {
    while (bindings_.size() > rootBindings_ && bindings_.back().depth > openLengths_.size())
        bindings_.pop_back();
}

XmlScanner::Token XmlScanner::EndTag(std::size_t end) {
    std::string_view full(buffer_.data() + begin_ + 2, end - begin_ - 2);
    while (!full.empty() && IsSpace(full.back()))
        full.remove_suffix(1);
    if (openLengths_.empty() || openLengths_.back() != full.size() ||
        !std::string_view(open_).ends_with(full)) {
        FailDamaged("XML 标记不匹配");
    }
    open_.resize(open_.size() - full.size());
    openLengths_.pop_back();
    Unbind();
    name_ = LocalName(full);
    begin_ = end + 1;
    return Token::End;
}

bool XmlScanner::NextAttribute(std::size_t& at, std::string_view& name, std::string_view& value) const {
    const std::string_view all = attributes_;
    while (at < all.size() && IsSpace(all[at]))
        ++at;
    if (at >= all.size()) return false;
    const std::size_t nameStart = at;
    while (at < all.size() && all[at] != '=' && !IsSpace(all[at]))
        ++at;
    name = all.substr(nameStart, at - nameStart);
    while (at < all.size() && IsSpace(all[at]))
        ++at;
    if (at >= all.size() || all[at] != '=') FailDamaged("XML 属性");
    ++at;
    while (at < all.size() && IsSpace(all[at]))
        ++at;
    if (at >= all.size() || (all[at] != '"' && all[at] != '\'')) FailDamaged("XML 属性");
    const std::size_t close = all.find(all[at], at + 1);
    if (close == std::string_view::npos) FailDamaged("XML 属性");
    value = all.substr(at + 1, close - at - 1);
    at = close + 1;
    return true;
}

std::string_view XmlScanner::RawAttribute(std::string_view name) const {
    std::string_view result;
    bool found = false;
    ForEachAttribute([&](std::string_view known, std::string_view value) {
        if (!found && known == name) result = value;
        found = found || known == name;
    });
    return result;
}

bool XmlScanner::HasAttribute(std::string_view name) const {
    bool found = false;
    ForEachAttribute([&](std::string_view known, std::string_view) { found = found || known == name; });
    return found;
}

std::string XmlScanner::Attribute(std::string_view name) const {
    std::string result;
    AppendXmlDecoded(result, RawAttribute(name));
    return result;
}

std::string XmlScanner::ForeignAttribute(std::string_view name) const {
    std::string result;
    ForEachAttribute([&](std::string_view known, std::string_view value) {
        if (result.empty() && !Prefix(known).empty() && LocalName(known) == name)
            AppendXmlDecoded(result, value);
    });
    return result;
}

void XmlScanner::AppendText(std::string& to) const {
    if (cdata_) {
        to.append(text_);
    } else {
        AppendXmlDecoded(to, text_);
    }
    if (to.size() > kMaxXmlTokenBytes) FailTooLarge();
}

void XmlScanner::SkipElement() {
    const std::size_t depth = Depth();
    while (true) {
        const Token token = Next();
        if (token == Token::Finished) FailDamaged("XML 不完整");
        if (token == Token::End && Depth() < depth) return;
    }
}

}  // namespace vicenter::office
