#pragma once

#include <QLocale>

namespace orvex::test {

/// Numbers are those of a locale for as long as this lives.
class InLocale {
public:
    explicit InLocale(const char* name) { QLocale::setDefault(QLocale(QString::fromLatin1(name))); }

    ~InLocale() { QLocale::setDefault(before_); }

    InLocale(const InLocale&) = delete;
    InLocale& operator=(const InLocale&) = delete;

private:
    QLocale before_;
};

} // namespace orvex::test
