#pragma once

#include <QString>
#include <QStringList>

#include <array>
#include <optional>

namespace orvex {

/// One of the two languages of the program.
class OrvexLanguage {
public:
    enum Case { simplifiedChinese, english };

    static constexpr std::array<Case, 2> allCases{simplifiedChinese, english};

    constexpr OrvexLanguage(Case value) : value_(value) {} // NOLINT: a case is a language

    /// The language of the text that is built now: `resolve` of the configured tag and the user's preferred
    /// languages. Computed anew at each use. Any thread.
    [[nodiscard]] static OrvexLanguage current();

    /// The language for a configured tag (absent: none) and the user's languages, most preferred first.
    [[nodiscard]] static OrvexLanguage resolve(const std::optional<QString>& configured,
                                               const QStringList& preferredLanguages);

    /// Replaces the information dictionary's tag for the rest of the process, as a command line may ask for.
    static void setConfigured(const QString& tag);

    [[nodiscard]] QString rawValue() const;
    [[nodiscard]] QString localeIdentifier() const;

    /// The form of a text in this language; both forms are UTF-8.
    [[nodiscard]] QString text(const char* chinese, const char* englishText) const;

    constexpr operator Case() const { return value_; } // NOLINT: used in switch and comparisons

private:
    Case value_;
};

/// The form of a text in the current language. The Chinese form comes first; placeholders are Qt's %1, %2.
[[nodiscard]] QString spt(const char* chinese, const char* english);

} // namespace orvex
