#include "Json/JsonPortions.h"

#include "Json/JsonError.h"
#include "OrvexLanguage.h"
#include "ParallelLoop.h"

#include <exception>

namespace orvex::platform {

namespace {

QString elementPath(qsizetype index) {
    return QStringLiteral("[%1]").arg(index);
}

/// A key path in the array of a portion, such as "[3].name", as that in the whole.
QString pathInWhole(const JsonPortion& portion, const QString& path) {
    const qsizetype end = path.indexOf(u']');
    const qsizetype index = path.mid(1, end - 1).toLongLong();
    return elementPath(portion.firstIndex + index) + path.mid(end + 1);
}

void requireSize(QByteArrayView text, const QString& keyPath) {
    if (text.size() > JsonPortions::largestElementBytes) {
        throw JsonError(keyPath, spt("内容过大。", "It is too large."));
    }
}

/// Raises the first error that there is no JSON, or else the first of all, if there is one.
void raiseFirst(const std::vector<std::exception_ptr>& syntaxErrors, const std::vector<std::exception_ptr>& errors) {
    for (const auto& list : {syntaxErrors, errors}) {
        for (const std::exception_ptr& error : list) {
            if (error) {
                std::rethrow_exception(error);
            }
        }
    }
}

} // namespace

JsonPortions::JsonPortions(QByteArrayView utf8)
    : text_(withoutByteOrderMark(utf8)),
      textOffset_(utf8.size() - text_.size()) {
    JsonOutline outline = jsonOutline(text_);
    if (outline.grammarError) {
        throw JsonSyntaxError(textOffset_ + *outline.grammarError);
    }
    portions_ = std::move(outline.portions);
    if (portions_.empty()) {
        requireSize(text_, {});
        static_cast<void>(JsonReader::parse(utf8).count()); // tells what is amiss
    }
}

JsonReader JsonPortions::arrayOf(const JsonPortion& portion) const {
    const QByteArrayView text = text_.sliced(portion.begin, portion.end - portion.begin);
    requireSize(text, elementPath(portion.count - 1));
    return JsonReader::parse('[' + text.toByteArray() + ']');
}

void JsonPortions::readEach(const std::function<void(std::size_t number, const JsonReader& array)>& read) const {
    std::vector<std::exception_ptr> syntaxErrors(count());
    std::vector<std::exception_ptr> errors(count());
    parallelLoop(count(), [&](std::size_t number) {
        const JsonPortion& portion = portions_[number];
        try {
            read(number, arrayOf(portion));
        } catch (const JsonSyntaxError& error) {
            constexpr qsizetype bracket = 1;
            const qsizetype offset = textOffset_ + portion.begin + error.offset() - bracket;
            syntaxErrors[number] = std::make_exception_ptr(JsonSyntaxError(offset));
        } catch (const JsonError& error) {
            errors[number] =
                std::make_exception_ptr(JsonError(pathInWhole(portion, error.keyPath()), error.description()));
        }
    });
    raiseFirst(syntaxErrors, errors);
}

} // namespace orvex::platform
