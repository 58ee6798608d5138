#include "documents/xml/scanner.h"

#include "documents/text/read_error.h"
#include "documents/text/utf8.h"
#include "documents/xml/byte_class.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <string>

namespace documents {

namespace {

constexpr std::size_t kDeepest = 64;
constexpr std::size_t kLongestValue = std::size_t{1} << 20U;
// No real document has as many. Small ones may: they need no memory worth counting.
constexpr std::size_t kBytesOfAnElement = 20;
constexpr std::size_t kSmall = std::size_t{64} << 10U;
// The values of an element are kept twice until its end. No machine has as many volumes.
constexpr std::size_t kMostInOne = 100'000;

class Scanner {
public:
    explicit Scanner(std::string_view xml) : xml_(xml) {}

    std::size_t Run() {
        if (xml_.starts_with("<?xml")) {
            SkipTo("?>", "the XML declaration has no end");
        }
        while (at_ < xml_.size()) {
            if (xml_[at_] == '<') {
                TakeMarkup();
            } else {
                TakeText();
            }
        }
        if (depth_ > 0) {
            Refuse("the text ends inside of the element " + std::string(levels_[depth_ - 1].name));
        }
        if (root_ == std::string_view::npos) {
            Refuse("there is no element");
        }
        return root_;
    }

private:
    struct Level {
        std::string_view name;
        std::size_t children = 0;
        bool text = false;
        bool comment = false;
    };

    [[noreturn]] void Refuse(const std::string& reason) const { RefuseAt(at_, reason); }
    [[noreturn]] void RefuseAt(std::size_t offset, const std::string& reason) const {
        throw ReadError(PlaceOf(xml_, offset), reason);
    }

    bool At(std::string_view text) const { return xml_.substr(at_, text.size()) == text; }

    // Moves behind `end`, and checks the characters before it.
    void SkipTo(std::string_view end, const char* missing) {
        const std::size_t found = xml_.find(end, at_);
        if (found == std::string_view::npos) {
            Refuse(missing);
        }
        while (at_ < found) {
            TakeCharacter();
        }
        at_ = found + end.size();
    }

    void TakeCharacter() {
        const ByteClass kind = ClassOf(xml_[at_]);
        if (kind == kForbidden) {
            RefuseCharacter(static_cast<unsigned char>(xml_[at_]));
        }
        if (kind != kLong) {
            ++at_;
            return;
        }
        const Utf8Character character = FirstCharacter(xml_.substr(at_, 4));
        if (!IsXmlCharacter(character.code)) {
            RefuseCharacter(character.code);
        }
        at_ += character.length;
    }

    [[noreturn]] void RefuseCharacter(char32_t code) const {
        std::array<char, 8> digits{};
        const auto end =
            std::to_chars(digits.data(), digits.data() + digits.size(), static_cast<unsigned>(code), 16).ptr;
        std::string number(digits.data(), end);
        std::transform(number.begin(), number.end(), number.begin(),
                       [](char c) { return c >= 'a' ? static_cast<char>(c - 'a' + 'A') : c; });
        number.insert(0, number.size() < 4 ? 4 - number.size() : 0, '0');
        Refuse("the character U+" + number + ", which XML forbids");
    }

    void TakeMarkup() {
        if (At("</")) {
            TakeEnd();
        } else if (At("<!--")) {
            TakeComment();
        } else if (At("<?")) {
            TakeInstruction();
        } else if (At("<!DOCTYPE")) {
            Refuse("a document type declaration");
        } else if (At("<![CDATA[")) {
            Refuse("a CDATA section");
        } else {
            TakeBegin();
        }
    }

    void NoteComment() {
        if (depth_ > 0) {
            levels_[depth_ - 1].comment = true;
        }
    }

    void TakeComment() {
        NoteComment();
        at_ += 4;
        SkipTo("--", "the comment has no end");
        if (!At(">")) {
            RefuseAt(at_ - 2, "two hyphens inside of a comment");
        }
        ++at_;
    }

    void TakeInstruction() {
        const std::size_t begin = at_;
        NoteComment();
        at_ += 2;
        const std::string_view target = TakeName();
        if (target.size() == 3 && (target[0] | 0x20) == 'x' && (target[1] | 0x20) == 'm' &&
            (target[2] | 0x20) == 'l') {
            RefuseAt(begin, "an XML declaration that is not at the beginning");
        }
        if (!At("?>") && !(at_ < xml_.size() && ClassOf(xml_[at_]) == kBlank)) {
            Refuse("a processing instruction that is not well-formed");
        }
        SkipTo("?>", "the processing instruction has no end");
    }

    std::string_view TakeName() {
        const std::size_t begin = at_;
        if (at_ < xml_.size() && StartsName(xml_[at_])) {
            do {
                ++at_;
            } while (at_ < xml_.size() && ContinuesName(xml_[at_]));
        }
        if (at_ == begin) {
            Refuse(at_ == xml_.size() ? "the text ends inside of markup" : "a name was expected");
        }
        return xml_.substr(begin, at_ - begin);
    }

    void SkipBlanks() {
        while (at_ < xml_.size() && ClassOf(xml_[at_]) == kBlank) {
            ++at_;
        }
    }

    void TakeBegin() {
        const std::size_t begin = at_;
        ++at_;
        const std::string_view name = TakeName();
        SkipBlanks();
        const bool empty = At("/>");
        if (!empty && !At(">")) {
            Refuse(at_ == xml_.size() ? "the text ends inside of markup"
                   : ClassOf(xml_[at_ - 1]) == kBlank && StartsName(xml_[at_])
                       ? "an attribute; a document has none"
                       : "the element's name is not well-formed");
        }
        Enter(name, begin);
        at_ += empty ? 2 : 1;
        value_begin_ = at_;
        if (empty) {
            --depth_;
        }
    }

    void Enter(std::string_view name, std::size_t begin) {
        ++elements_;
        if (elements_ * kBytesOfAnElement > std::max(xml_.size(), kSmall)) {
            RefuseAt(begin, "more elements than a document of this size can have");
        }
        if (depth_ == 0) {
            if (root_ != std::string_view::npos) {
                RefuseAt(begin, "a second root element");
            }
            root_ = begin;
        } else {
            Level& parent = levels_[depth_ - 1];
            if (parent.text) {
                RefuseAt(begin, "text between elements");
            }
            if (++parent.children > kMostInOne) {
                RefuseAt(begin, "more than 100000 elements in an element");
            }
        }
        if (depth_ == kDeepest) {
            RefuseAt(begin, "more than 64 levels of elements");
        }
        levels_[depth_++] = Level{.name = name};
    }

    void TakeEnd() {
        const std::size_t begin = at_;
        at_ += 2;
        const std::string_view name = TakeName();
        SkipBlanks();
        if (!At(">")) {
            Refuse(at_ == xml_.size() ? "the text ends inside of markup"
                                      : "an end tag that is not well-formed");
        }
        if (depth_ == 0 || levels_[depth_ - 1].name != name) {
            RefuseAt(begin, depth_ == 0 ? "an end tag without a begin"
                                        : "the end of " + std::string(name) + " where that of " +
                                              std::string(levels_[depth_ - 1].name) + " was expected");
        }
        const Level& level = levels_[depth_ - 1];
        if (level.comment && level.children == 0) {
            RefuseAt(begin, "a comment inside of a value");
        }
        if (level.children == 0 && begin - value_begin_ > kLongestValue) {
            RefuseAt(value_begin_, "a value of more than 1 MiB");
        }
        ++at_;
        --depth_;
    }

    void TakeText() {
        const std::size_t begin = at_;
        bool blank = true;
        while (at_ < xml_.size() && xml_[at_] != '<') {
            const ByteClass kind = ClassOf(xml_[at_]);
            blank = blank && kind == kBlank;
            if (kind == kOrdinary || kind == kBlank) {
                ++at_;
            } else if (xml_[at_] == '&') {
                TakeReference();
            } else if (At("]]>")) {
                Refuse("the end of a CDATA section without its begin");
            } else {
                TakeCharacter();
            }
        }
        if (blank) {
            return;
        }
        if (depth_ == 0) {
            RefuseAt(begin, "text outside of the root element");
        }
        Level& level = levels_[depth_ - 1];
        level.text = true;
        if (level.children > 0) {
            RefuseAt(begin, "text between elements");
        }
    }

    void TakeReference() {
        constexpr std::size_t kLongestReference = 12;  // &#x0010FFFF;
        const std::size_t end = xml_.substr(at_, kLongestReference).find(';');
        if (end == std::string_view::npos) {
            Refuse("a reference that is not well-formed");
        }
        const std::string_view name = xml_.substr(at_ + 1, end - 1);
        constexpr std::string_view kEntities[] = {"lt", "gt", "amp", "quot", "apos"};
        if (name.starts_with('#')) {
            RequireCharacter(name.substr(1));
        } else if (std::find(std::begin(kEntities), std::end(kEntities), name) == std::end(kEntities)) {
            Refuse("an unknown entity");
        }
        at_ += end + 1;
    }

    void RequireCharacter(std::string_view number) const {
        const bool hexadecimal = number.starts_with('x');
        number.remove_prefix(hexadecimal ? 1 : 0);
        std::uint32_t code = 0;
        const auto [end, error] =
            std::from_chars(number.data(), number.data() + number.size(), code, hexadecimal ? 16 : 10);
        if (error != std::errc() || end != number.data() + number.size()) {
            Refuse("a reference that is not well-formed");
        }
        if (!IsXmlCharacter(code)) {
            Refuse("a reference to a character that XML forbids");
        }
    }

    std::string_view xml_;
    std::size_t at_ = 0;
    std::size_t depth_ = 0;
    std::size_t elements_ = 0;
    std::size_t root_ = std::string_view::npos;
    std::size_t value_begin_ = 0;
    std::array<Level, kDeepest> levels_{};
};

}  // namespace

std::size_t RequireWellFormed(std::string_view xml) {
    return Scanner(xml).Run();
}

}  // namespace documents
