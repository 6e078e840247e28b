#pragma once

// A forward reader of the XML parts of a package, made for hostile input as much as for speed.
//
// It checks that tags balance, knows the five predefined entities and character references, and refuses
// document types outright, so nothing ever expands. Parts are UTF-8. One token is held at a time, in a window
// of at most kMaxXmlTokenBytes. Views stay valid until the next call of Next().
//
// A part speaks the vocabulary of its root element: names are given without their prefixes, and elements of
// any other namespace (extensions, alternate content) are passed over with all they hold, so that none is
// ever taken for one of the format's own that bears the same name.

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace vicenter::office {

class ByteSource {
  public:
    ByteSource() = default;
    ByteSource(const ByteSource&) = delete;
    ByteSource& operator=(const ByteSource&) = delete;
    virtual ~ByteSource() = default;
    // Up to `size` bytes; 0 at the end. Throws automation::Error when the source is damaged.
    virtual std::size_t Read(char* buffer, std::size_t size) = 0;
};

class XmlScanner {
  public:
    enum class Token { Start, End, Text, Finished };

    explicit XmlScanner(ByteSource& source);

    // The next token. An empty element gives Start and then End.
    Token Next();

    // Of the last Start or End: the name without its prefix.
    std::string_view Name() const { return name_; }
    // Elements open around the token; a Start counts itself.
    std::size_t Depth() const { return openLengths_.size(); }
    // Of the last Start: the raw value of the attribute of that name, which bears no prefix. Empty when there
    // is none.
    std::string_view RawAttribute(std::string_view name) const;
    // The same for an attribute of another namespace ("r:id" by "id").
    std::string ForeignAttribute(std::string_view name) const;
    bool HasAttribute(std::string_view name) const;
    // Of the last Start: calls take(name, raw value) for every attribute in one pass, names with their
    // prefixes.
    template <class Take>
    void ForEachAttribute(const Take& take) const {
        std::size_t at = 0;
        std::string_view name;
        std::string_view value;
        while (NextAttribute(at, name, value))
            take(name, value);
    }
    std::string Attribute(std::string_view name) const;
    // Of the last Text: appended with its references resolved.
    void AppendText(std::string& to) const;

    // Behind a Start: skips to the End of the same element.
    void SkipElement();

  private:
    static constexpr std::size_t kWindowBytes = 128u << 10;

    bool Refill();  // false at the end of the source
    std::size_t FindInWindow(char wanted, std::size_t from);
    std::size_t FindInWindow(std::string_view wanted, std::size_t from);
    std::size_t FindTagEnd(std::size_t from);
    void CheckDeclaration();
    Token NextOfAny();
    Token StartTag(std::size_t end);
    Token EndTag(std::size_t end);
    bool IsForeign(std::string_view prefix);
    void Unbind();
    bool NextAttribute(std::size_t& at, std::string_view& name, std::string_view& value) const;

    ByteSource& source_;
    std::vector<char> buffer_;
    std::size_t begin_ = 0;  // first byte of the window that is not used up
    std::size_t end_ = 0;    // behind the last byte of the window
    bool ended_ = false;
    bool rootSeen_ = false;
    bool pendingEnd_ = false;
    bool cdata_ = false;
    std::string_view name_;
    std::string_view attributes_;
    std::string_view text_;
    std::string open_;  // the full names of the open elements, end to end
    std::vector<std::uint32_t> openLengths_;

    // A prefix (empty: names without one) from the element of that depth on.
    struct Binding {
        std::size_t depth;
        std::string prefix;
        bool isRoots;  // it means the root's namespace
    };
    std::vector<Binding> bindings_;
    std::size_t rootBindings_ = 0;
    std::string rootPrefix_;
    std::string rootNamespace_;
    bool foreign_ = false;  // the last Start
};

// Appends text with its entities and character references resolved. An unknown entity throws
// automation::Error.
void AppendXmlDecoded(std::string& to, std::string_view raw);
// Appends text as the content of an element or an attribute. What XML cannot hold is written in the package's
// own escape "_xHHHH_"; malformed bytes become U+FFFD.
void AppendXmlEscaped(std::string& to, std::string_view text);
// Resolves "_xHHHH_" in place.
void ResolvePackageEscapes(std::string& text);

}  // namespace vicenter::office
