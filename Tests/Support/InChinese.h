#pragma once

#include "OrvexLanguage.h"

namespace orvex::test {

/// Texts are Chinese for as long as this lives.
class InChinese {
public:
    InChinese() { OrvexLanguage::setConfigured(QStringLiteral("zh-Hans")); }

    ~InChinese() { OrvexLanguage::setConfigured(QStringLiteral("en")); }

    InChinese(const InChinese&) = delete;
    InChinese& operator=(const InChinese&) = delete;
};

} // namespace orvex::test
