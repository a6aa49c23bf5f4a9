#include "Output/RollPDFUserUnit.h"

#include "Files/FileUpdater.h"
#include "OrvexError.h"
#include "OrvexLanguage.h"
#include "Output/RollPDFLimits.h"
#include "PDF/PdfStructure.h"

#include <QStringDecoder>

#include <array>
#include <charconv>
#include <string_view>

namespace orvex::RollPDFUserUnit {

namespace {

using namespace RollPDFLimits;
using platform::FileUpdater;
using Text = QByteArrayView;

constexpr Text firstVersionWithUserUnit = "%PDF-1.6";
constexpr std::array<Text, 5> acceptedHeaders{"%PDF-1.3", "%PDF-1.4", "%PDF-1.5", firstVersionWithUserUnit, "%PDF-1.7"};

/// An object in use.
struct Object {
    qint64 number = 0;
    qint64 offset = 0;
};

/// The cross-reference section and the trailer behind it.
struct CrossReference {
    qint64 xrefOffset = 0;
    qint64 entryCount = 0;
    std::vector<Object> objects; ///< by number
    QByteArray trailerBody;      ///< between the dictionary's outer brackets
};

struct Page {
    qint64 pageObject = 0; ///< its number
    QByteArray pageBody;   ///< between the dictionary's outer brackets
};

// No detail is told: the operator could do nothing with it.
OrvexError refusal() {
    return OrvexError::invalid(spt("无法安全地向此 Quartz PDF 写入标准 UserUnit。未保存错误的长卷布尺寸。",
                                   "Cannot safely write a standard UserUnit into this Quartz PDF. Incorrect long-roll "
                                   "dimensions were not saved."));
}

void require(bool condition) {
    if (!condition) {
        throw refusal();
    }
}

template <typename Value>
Value required(const std::optional<Value>& value) {
    require(value.has_value());
    return *value;
}

const QByteArray& requireASCII(const QByteArray& bytes) {
    require(std::ranges::all_of(bytes, [](char byte) { return static_cast<unsigned char>(byte) < 0x80; }));
    return bytes;
}

bool isNewline(char byte) {
    return byte == '\n' || byte == '\v' || byte == '\f' || byte == '\r';
}

bool isWhiteSpace(char byte) {
    return byte == ' ' || byte == '\t' || isNewline(byte);
}

bool isTrailerSeparator(char byte) {
    return isWhiteSpace(byte) || byte == '<' || byte == '>' || byte == '[' || byte == ']';
}

Text trimmed(Text text, bool (*isTrimmed)(char)) {
    while (!text.isEmpty() && isTrimmed(text.front())) {
        text = text.sliced(1);
    }
    while (!text.isEmpty() && isTrimmed(text.back())) {
        text.chop(1);
    }
    return text;
}

/// Hands out the tokens of a text one by one; none of them is empty.
class Tokens {
public:
    explicit Tokens(Text text, bool (*isSeparator)(char) = isWhiteSpace) : rest_(text), isSeparator_(isSeparator) {}

    std::optional<Text> next() {
        const char* start = std::find_if_not(rest_.begin(), rest_.end(), isSeparator_);
        const char* end = std::find_if(start, rest_.end(), isSeparator_);
        rest_ = Text(end, rest_.end());
        return start == end ? std::nullopt : std::optional(Text(start, end));
    }

private:
    Text rest_;
    bool (*isSeparator_)(char);
};

bool contains(Tokens tokens, Text wanted) {
    while (const auto token = tokens.next()) {
        if (*token == wanted) {
            return true;
        }
    }
    return false;
}

/// Exactly `Count` tokens.
template <std::size_t Count>
std::array<Text, Count> requiredTokens(Text text) {
    Tokens tokens(text);
    std::array<Text, Count> result;
    for (Text& token : result) {
        token = required(tokens.next());
    }
    require(!tokens.next());
    return result;
}

/// Hands out the lines of a text, blanks at their ends removed. Every newline character ends a line of its own.
class Lines {
public:
    explicit Lines(Text text) : rest_(text) {}

    std::optional<Text> next() {
        if (!rest_) {
            return std::nullopt;
        }
        const char* end = std::find_if(rest_->begin(), rest_->end(), isNewline);
        const Text line(rest_->begin(), end);
        rest_ = end == rest_->end() ? std::nullopt : std::optional(Text(end + 1, rest_->end()));
        return trimmed(line, [](char byte) { return byte == ' ' || byte == '\t'; });
    }

    /// The lines that are left, joined by line feeds.
    QByteArray joinedRest() {
        QByteArray result;
        for (auto line = next(); line; line = next()) {
            result += *line;
            result += '\n';
        }
        result.chop(1);
        return result;
    }

private:
    std::optional<Text> rest_;
};

template <typename Integer>
std::optional<Integer> parsed(Text text) {
    Integer value = 0;
    const auto [end, error] = std::from_chars(text.begin(), text.end(), value);
    return error == std::errc() && end == text.end() ? std::optional(value) : std::nullopt;
}

/// Decimal digits alone.
std::optional<quint64> unsignedInteger(Text text) {
    return parsed<quint64>(text);
}

/// Decimal digits with an optional sign.
std::optional<qint64> signedInteger(Text text) {
    const bool hasPlus = text.startsWith('+') && !text.startsWith("+-");
    return parsed<qint64>(hasPlus ? text.sliced(1) : text);
}

/// The integer behind the first token that equals `key`.
std::optional<qint64> number(Text key, Tokens tokens) {
    auto token = tokens.next();
    while (token && *token != key) {
        token = tokens.next();
    }
    const auto value = token ? tokens.next() : std::nullopt;
    return value ? signedInteger(*value) : std::nullopt;
}

/// A dictionary between its outer brackets.
struct Dictionary {
    Text body;
    Text after;
};

Dictionary requiredDictionary(Text text) {
    const qsizetype open = text.indexOf("<<");
    const qsizetype close = text.lastIndexOf(">>");
    require(open >= 0 && close >= open + 2);
    return {.body = text.sliced(open + 2, close - open - 2), .after = text.sliced(close + 2)};
}

QByteArray readHeader(const FileUpdater& file) {
    require(file.size() >= headerBytes && file.size() <= largestFileBytes);
    QByteArray header = file.bytesAt(0, headerBytes);
    require(std::ranges::find(acceptedHeaders, Text(header)) != acceptedHeaders.end());
    return header;
}

qint64 findCrossReference(const FileUpdater& file) {
    static constexpr Text keyword = "startxref";
    const qint64 tailSize = std::min(file.size(), tailBytes);
    const QByteArray tail = file.bytesAt(file.size() - tailSize, tailSize);
    const qsizetype position = tail.lastIndexOf(keyword);
    require(position >= 0);
    const QByteArray rest = tail.sliced(position + keyword.size());
    const quint64 offset = required(unsignedInteger(required(Tokens(requireASCII(rest)).next())));
    const auto fileSize = static_cast<quint64>(file.size());
    require(offset < fileSize && fileSize - offset <= largestCrossReferenceBytes);
    return static_cast<qint64>(offset);
}

/// The object that an entry tells of; absent for a free one.
std::optional<Object> readEntry(Text line, qint64 objectNumber, qint64 xrefOffset) {
    const auto [offsetText, generationText, kind] = requiredTokens<3>(line);
    const quint64 offset = required(unsignedInteger(offsetText));
    const qint64 generation = required(signedInteger(generationText));
    if (kind == Text("f")) {
        return std::nullopt;
    }
    require(kind == Text("n") && generation == 0);
    require(offset > 0 && offset < static_cast<quint64>(xrefOffset));
    return Object{.number = objectNumber, .offset = static_cast<qint64>(offset)};
}

void checkTrailer(const CrossReference& table) {
    const Tokens tokens(table.trailerBody, isTrailerSeparator);
    require(number("/Size", tokens) == table.entryCount);
    const qint64 root = required(number("/Root", tokens));
    require(std::ranges::any_of(table.objects, [root](const Object& object) { return object.number == root; }));
    // Updated before, encrypted, or with hybrid references.
    require(!contains(tokens, "/Prev") && !contains(tokens, "/Encrypt") && !contains(tokens, "/XRefStm"));
}

CrossReference readCrossReference(const FileUpdater& file, qint64 xrefOffset) {
    const QByteArray text = file.bytesAt(xrefOffset, file.size() - xrefOffset);
    Lines lines(requireASCII(text));
    require(lines.next() == Text("xref"));
    const auto [firstNumber, countText] = requiredTokens<2>(required(lines.next()));
    CrossReference table{
        .xrefOffset = xrefOffset, .entryCount = required(signedInteger(countText)), .objects = {}, .trailerBody = {}};
    require(firstNumber == Text("0") && table.entryCount >= fewestEntries && table.entryCount <= mostEntries);
    for (qint64 objectNumber = 0; objectNumber < table.entryCount; ++objectNumber) {
        if (const auto object = readEntry(required(lines.next()), objectNumber, xrefOffset)) {
            table.objects.push_back(*object);
        }
    }
    require(lines.next() == Text("trailer"));
    const QByteArray trailer = lines.joinedRest();
    table.trailerBody = requiredDictionary(trailer).body.toByteArray();
    checkTrailer(table);
    return table;
}

/// Whether an object's first bytes are those of a page that opens with its type. The bytes of other objects may be
/// anything, so they are read as text with the invalid parts replaced.
bool startsAsPage(const QByteArray& start, qint64 objectNumber) {
    const std::array<QString, 6> expected{QString::number(objectNumber), QStringLiteral("0"),
                                          QStringLiteral("obj"),         QStringLiteral("<<"),
                                          QStringLiteral("/Type"),       QStringLiteral("/Page")};
    // A byte order mark is a character like any other here.
    QStringDecoder decoder(QStringDecoder::Utf8,
                           QStringDecoder::Flag::Stateless | QStringDecoder::Flag::ConvertInitialBom);
    const QString text = decoder(start);
    const auto isSpace = [](QChar character) { return character.isSpace(); };
    const QChar* end = text.cbegin();
    return std::ranges::all_of(expected, [&](const QString& token) {
        const QChar* begin = std::find_if_not(end, text.cend(), isSpace);
        end = std::find_if(begin, text.cend(), isSpace);
        return QStringView(begin, end) == token;
    });
}

Page readPage(const FileUpdater& file, const Object& object, qint64 span) {
    require(span <= largestPageBytes);
    const QByteArray text = file.bytesAt(object.offset, span);
    const Dictionary dictionary = requiredDictionary(requireASCII(text));
    require(trimmed(dictionary.after, isWhiteSpace) == Text("endobj"));
    require(!contains(Tokens(dictionary.body), "/UserUnit"));
    return {.pageObject = object.number, .pageBody = dictionary.body.toByteArray()};
}

Page findOnlyPage(const FileUpdater& file, const CrossReference& table) {
    std::vector<Object> objects = table.objects;
    // Stable: of equal offsets, the lower number comes first and has no bytes of its own.
    std::ranges::stable_sort(objects, {}, &Object::offset);
    std::optional<Page> page;
    for (std::size_t index = 0; index < objects.size(); ++index) {
        const Object& object = objects[index];
        const qint64 end = index + 1 < objects.size() ? objects[index + 1].offset : table.xrefOffset;
        const qint64 span = end - object.offset;
        if (startsAsPage(file.bytesAt(object.offset, std::min(span, objectStartBytes)), object.number)) {
            require(!page);
            page = readPage(file, object, span);
        }
    }
    return required(page);
}

/// The value with all digits that reading it back needs, and always a point (the form of printf's %.17g). PDF knows no
/// exponents: ISO 32000-1, 7.3.3.
QByteArray valueText(double userUnit) {
    require(std::isfinite(userUnit) && userUnit > 0);
    std::array<char, 64> buffer{};
    const auto [end, error] = std::to_chars(buffer.begin(), buffer.end(), userUnit, std::chars_format::general, 17);
    const Text text(buffer.begin(), end);
    require(error == std::errc() && !text.contains('e'));
    return text.toByteArray();
}

/// The new revision of the page, and the section and trailer that point to it: ISO 32000-1, 7.5.6.
QByteArray updateText(qint64 fileSize, const CrossReference& table, const Page& page, const QByteArray& value) {
    constexpr qsizetype offsetDigits = 10;
    const QByteArray pageNumber = QByteArray::number(page.pageObject);
    // The leading line feed parts the object from the old end of file marker.
    const QByteArray object =
        "\n" + pageNumber + " 0 obj\n<<" + page.pageBody + " /UserUnit " + value + " >>\nendobj\n";
    const QByteArray entry = QByteArray::number(fileSize + 1).rightJustified(offsetDigits, '0');
    return object + "xref\n" + pageNumber + " 1\n" + entry + " 00000 n \ntrailer\n<<" + table.trailerBody + " /Prev " +
           QByteArray::number(table.xrefOffset) + " >>\nstartxref\n" + QByteArray::number(fileSize + object.size()) +
           "\n%%EOF\n";
}

void prove(double userUnit, const QString& path) {
    double found = 0;
    try {
        const platform::PdfStructure pdf = platform::PdfStructure::open(path);
        require(pdf.pageCount() == 1 && std::holds_alternative<double>(pdf.userUnit()));
        found = std::get<double>(pdf.userUnit());
    } catch (const Failure&) {
        throw refusal(); // a file that cannot be read proves nothing
    }
    require(std::abs(found - userUnit) < readBackTolerance);
}

} // namespace

void apply(double userUnit, const QString& toOwnQuartzPDF) {
    FileUpdater file = FileUpdater::open(toOwnQuartzPDF);
    const QByteArray header = readHeader(file);
    const CrossReference table = readCrossReference(file, findCrossReference(file));
    const Page page = findOnlyPage(file, table);
    file.writeAt(file.size(), updateText(file.size(), table, page, valueText(userUnit)));
    if (Text(header) < firstVersionWithUserUnit) {
        file.writeAt(0, firstVersionWithUserUnit);
    }
    file.synchronize();
    prove(userUnit, toOwnQuartzPDF);
}

} // namespace orvex::RollPDFUserUnit
