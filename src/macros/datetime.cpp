#include "datetime.h"

#include <QDate>
#include <QTime>

using namespace Qt::StringLiterals;

namespace
{

QString twoDigits(int number)
{
    return QString::number(number).rightJustified(2, u'0');
}

QString year()
{
    return QString::number(QDate::currentDate().year()).rightJustified(4, u'0');
}

QString date()
{
    static constexpr const char *months[] = {
        "January", "February", "March",     "April",   "May",      "June",
        "July",    "August",   "September", "October", "November", "December",
    };
    const QDate today = QDate::currentDate();
    return QString::number(today.day()) + u' ' + QString::fromLatin1(months[today.month() - 1]) +
           u' ' + year();
}

QString time()
{
    const QTime now = QTime::currentTime();
    return twoDigits(now.hour()) + u':' + twoDigits(now.minute()) + u':' + twoDigits(now.second());
}

struct BuiltinMacro {
    QLatin1StringView name;
    QString (*value)();
};

constexpr BuiltinMacro builtinMacros[] = {
    {"Date"_L1, date},
    {"DateYear"_L1, year},
    {"DateMonth"_L1, [] { return twoDigits(QDate::currentDate().month()); }},
    {"DateDay"_L1, [] { return twoDigits(QDate::currentDate().day()); }},
    {"Time"_L1, time},
    {"TimeHour"_L1, [] { return twoDigits(QTime::currentTime().hour()); }},
    {"TimeMinute"_L1, [] { return twoDigits(QTime::currentTime().minute()); }},
    {"TimeSecond"_L1, [] { return twoDigits(QTime::currentTime().second()); }},
};

}  // namespace

bool builtinMacroValue(const QString &name, QString &value)
{
    if (!name.startsWith(u'D') && !name.startsWith(u'T'))
        return false;
    for (const BuiltinMacro &macro : builtinMacros) {
        if (name == macro.name) {
            value = macro.value();
            return true;
        }
    }
    return false;
}
