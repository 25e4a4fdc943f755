// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <qmailglobal.h>

#include <QDateTime>
#include <QMetaType>
#include <QString>

/** A moment as messages write it: in text forms with the offset that it was built with. */
class QMF_EXPORT QMailTimeStamp
{
public:
    enum OutputFormat { Rfc2822, Rfc3501, Rfc3339 };

    static QMailTimeStamp currentDateTime();

    QMailTimeStamp() = default;
    explicit QMailTimeStamp(const QString &rfc2822Text);
    explicit QMailTimeStamp(const QDateTime &dateTime);

    QString toString(OutputFormat format = Rfc2822) const;
    QDateTime toLocalTime() const;
    QDateTime toUTC() const;
    bool isNull() const;
    bool isValid() const;

    bool operator==(const QMailTimeStamp &other) const;
    bool operator!=(const QMailTimeStamp &other) const;
    bool operator<(const QMailTimeStamp &other) const;
    bool operator<=(const QMailTimeStamp &other) const;
    bool operator>(const QMailTimeStamp &other) const;
    bool operator>=(const QMailTimeStamp &other) const;

private:
    QDateTime mTime;
};

Q_DECLARE_METATYPE(QMailTimeStamp)
