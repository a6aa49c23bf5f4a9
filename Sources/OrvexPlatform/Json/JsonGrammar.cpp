#include "Json/JsonGrammar.h"

namespace orvex::platform {

namespace {

bool isDigit(char byte) {
    return byte >= '0' && byte <= '9';
}

bool isHexadecimalDigit(char byte) {
    return isDigit(byte) || (byte >= 'a' && byte <= 'f') || (byte >= 'A' && byte <= 'F');
}

/// Walks over a text. Each function takes what it is named after and says whether it was there; a failed one stays
/// where the text departs from the grammar.
class Walk {
public:
    explicit Walk(QByteArrayView text) : text_(text) {}

    [[nodiscard]] qsizetype offset() const { return offset_; }

    [[nodiscard]] bool document() {
        space();
        if (!(isAt('[') ? topArray() : value(0))) {
            return false;
        }
        space();
        return offset_ == text_.size();
    }

    [[nodiscard]] std::vector<JsonPortion> takePortions() { return std::move(portions_); }

private:
    [[nodiscard]] bool isAt(char byte) const { return offset_ < text_.size() && text_[offset_] == byte; }

    [[nodiscard]] bool take(char byte) {
        if (!isAt(byte)) {
            return false;
        }
        ++offset_;
        return true;
    }

    void space() {
        while (isAt(' ') || isAt('\t') || isAt('\n') || isAt('\r')) {
            ++offset_;
        }
    }

    [[nodiscard]] bool value(int depth) {
        if (isAt('{')) {
            return list(depth + 1, '}', &Walk::member);
        }
        if (isAt('[')) {
            return list(depth + 1, ']', &Walk::value);
        }
        return scalar();
    }

    [[nodiscard]] bool scalar() {
        if (isAt('"')) {
            return string();
        }
        if (isAt('t')) {
            return word("true");
        }
        if (isAt('f')) {
            return word("false");
        }
        return isAt('n') ? word("null") : number();
    }

    /// An array that is the document; its portions are noted.
    [[nodiscard]] bool topArray() {
        ++offset_;
        JsonPortion portion{.begin = offset_};
        space();
        if (!isAt(']')) {
            do {
                space();
                if (!value(1)) {
                    return false;
                }
                space();
                ++portion.count;
                if (isAt(',') && isLargeEnough(portion)) {
                    note(portion);
                }
            } while (take(','));
        }
        note(portion);
        return take(']');
    }

    [[nodiscard]] bool isLargeEnough(const JsonPortion& portion) const {
        constexpr qsizetype elements = 64;
        constexpr qsizetype bytes = 1 << 20;
        return portion.count >= elements || offset_ - portion.begin >= bytes;
    }

    /// Ends a portion at the comma or bracket behind it, and begins the next.
    void note(JsonPortion& portion) {
        portion.end = offset_;
        portions_.push_back(portion);
        portion = {.begin = offset_ + 1, .firstIndex = portion.firstIndex + portion.count};
    }

    /// The rest of an array or object, from its bracket on.
    [[nodiscard]] bool list(int depth, char end, bool (Walk::*element)(int)) {
        if (depth > deepestJsonNesting) {
            return false;
        }
        ++offset_;
        space();
        if (take(end)) {
            return true;
        }
        do {
            space();
            if (!(this->*element)(depth)) {
                return false;
            }
            space();
        } while (take(','));
        return take(end);
    }

    [[nodiscard]] bool member(int depth) {
        if (!string()) {
            return false;
        }
        space();
        if (!take(':')) {
            return false;
        }
        space();
        return value(depth);
    }

    [[nodiscard]] bool word(QByteArrayView word) {
        for (const char letter : word) {
            if (!take(letter)) {
                return false;
            }
        }
        return true;
    }

    [[nodiscard]] bool string() {
        constexpr unsigned char firstPrintable = 0x20;
        if (!take('"')) {
            return false;
        }
        while (offset_ < text_.size() && !isAt('"')) {
            if (static_cast<unsigned char>(text_[offset_]) < firstPrintable || (isAt('\\') && !escape())) {
                return false;
            }
            ++offset_;
        }
        return take('"');
    }

    /// Ends on the last byte of the escape.
    [[nodiscard]] bool escape() {
        ++offset_;
        if (!isAt('u')) {
            return offset_ < text_.size() && QByteArrayView("\"\\/bfnrt").contains(text_[offset_]);
        }
        constexpr int digits = 4;
        for (int digit = 0; digit < digits; ++digit) {
            ++offset_;
            if (offset_ >= text_.size() || !isHexadecimalDigit(text_[offset_])) {
                return false;
            }
        }
        return true;
    }

    [[nodiscard]] bool number() {
        static_cast<void>(take('-'));
        if (!take('0') && !digits()) {
            return false;
        }
        if (take('.') && !digits()) {
            return false;
        }
        if (!take('e') && !take('E')) {
            return true;
        }
        static_cast<void>(take('+') || take('-'));
        return digits();
    }

    [[nodiscard]] bool digits() {
        const qsizetype first = offset_;
        while (offset_ < text_.size() && isDigit(text_[offset_])) {
            ++offset_;
        }
        return offset_ > first;
    }

    QByteArrayView text_;
    qsizetype offset_ = 0;
    std::vector<JsonPortion> portions_;
};

} // namespace

JsonOutline jsonOutline(QByteArrayView text) {
    Walk walk(text);
    if (!walk.document()) {
        return {.grammarError = walk.offset()};
    }
    return {.portions = walk.takePortions()};
}

std::optional<qsizetype> jsonGrammarError(QByteArrayView text) {
    return jsonOutline(text).grammarError;
}

} // namespace orvex::platform
