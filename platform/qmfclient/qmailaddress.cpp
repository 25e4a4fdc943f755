// SPDX-License-Identifier: LGPL-2.1-or-later
#include <qmailaddress.h>

#include <QRegularExpression>

namespace {

/** Calls found(index, character) for each character outside quotes and angle brackets, until it returns
 * false. */
template <typename F> void forEachBare(const QString &text, F found)
{
    bool quoted = false;
    int depth = 0;
    for (int i = 0; i < text.size(); ++i) {
        const QChar c = text.at(i);
        if (c == QLatin1Char('\\') && quoted) {
            ++i;
        } else if (c == QLatin1Char('"')) {
            quoted = !quoted;
        } else if (!quoted) {
            if (c == QLatin1Char('>') && depth > 0)
                --depth;
            if (depth == 0 && !found(i, c))
                return;
            if (c == QLatin1Char('<'))
                ++depth;
        }
    }
}

int firstBare(const QString &text, QChar wanted)
{
    int index = -1;
    forEachBare(text, [&](int i, QChar c) {
        if (c == wanted)
            index = i;
        return index < 0;
    });
    return index;
}

/** "name: members;" gives the place of the colon, anything else -1. */
int groupColon(const QString &text)
{
    return text.endsWith(QLatin1Char(';')) ? firstBare(text, QLatin1Char(':')) : -1;
}

QString unquoted(const QString &text)
{
    if (text.size() < 2 || !text.startsWith(QLatin1Char('"')) || !text.endsWith(QLatin1Char('"')))
        return text;
    QString out;
    for (int i = 1; i < text.size() - 1; ++i) {
        if (text.at(i) == QLatin1Char('\\') && i + 1 < text.size() - 1)
            ++i;
        out += text.at(i);
    }
    return out;
}

QString quotedIfNeeded(const QString &name)
{
    if (name.startsWith(QLatin1Char('"')) && name.endsWith(QLatin1Char('"')) && name.size() > 1)
        return name;
    static const QRegularExpression specials(QStringLiteral("[()<>\\[\\]:;@\\\\,.\"]"));
    if (!name.contains(specials))
        return name;
    QString escaped = name;
    escaped.replace(QLatin1Char('\\'), QLatin1String("\\\\"));
    escaped.replace(QLatin1Char('"'), QLatin1String("\\\""));
    return QLatin1Char('"') + escaped + QLatin1Char('"');
}

} // namespace

QMailAddress::QMailAddress(const QString &addressText)
{
    const QString text = addressText.trimmed();
    const int colon = groupColon(text);
    if (colon > 0) {
        mGroup = true;
        mName = text.left(colon).trimmed();
        mAddress = text.mid(colon + 1, text.size() - colon - 2).trimmed();
        return;
    }
    const int open = firstBare(text, QLatin1Char('<'));
    const int close = open < 0 ? -1 : text.indexOf(QLatin1Char('>'), open);
    if (close > open) {
        mName = text.left(open).trimmed();
        mAddress = text.mid(open + 1, close - open - 1).trimmed();
    } else {
        mAddress = text;
    }
}

QMailAddress::QMailAddress(const QString &name, const QString &emailAddress)
    : mName(name.trimmed())
    , mAddress(emailAddress.trimmed())
{
}

bool QMailAddress::isNull() const
{
    return mName.isEmpty() && mAddress.isEmpty();
}

QString QMailAddress::name() const
{
    return mName.isEmpty() ? mAddress : unquoted(mName);
}

QString QMailAddress::address() const
{
    return mAddress;
}

bool QMailAddress::isGroup() const
{
    return mGroup;
}

QList<QMailAddress> QMailAddress::groupMembers() const
{
    return mGroup ? fromStringList(mAddress) : QList<QMailAddress>();
}

bool QMailAddress::isEmailAddress() const
{
    static const QRegularExpression pattern(QStringLiteral("^[^\\s@]+@[^\\s@]+$"));
    return !mGroup && pattern.match(mAddress).hasMatch();
}

bool QMailAddress::isPhoneNumber() const
{
    static const QRegularExpression pattern(QStringLiteral("^\\+?[0-9*#][-0-9*#().\\s]*$"));
    return !mGroup && pattern.match(mAddress).hasMatch();
}

QString QMailAddress::toString(bool forceDelimited) const
{
    if (isNull())
        return QString();
    if (mGroup)
        return mName + QLatin1String(": ") + mAddress + QLatin1Char(';');
    const QString delimited = QLatin1Char('<') + mAddress + QLatin1Char('>');
    if (mName.isEmpty() || mName == mAddress)
        return forceDelimited ? delimited : mAddress;
    return quotedIfNeeded(mName) + QLatin1Char(' ') + delimited;
}

bool QMailAddress::operator==(const QMailAddress &other) const
{
    return mGroup == other.mGroup && mAddress == other.mAddress && name() == other.name();
}

bool QMailAddress::operator!=(const QMailAddress &other) const
{
    return !(*this == other);
}

QStringList QMailAddress::toStringList(const QList<QMailAddress> &list, bool forceDelimited)
{
    QStringList texts;
    for (const QMailAddress &address : list)
        texts.append(address.toString(forceDelimited));
    return texts;
}

QList<QMailAddress> QMailAddress::fromStringList(const QString &list)
{
    QStringList texts;
    int start = 0;
    bool inGroup = false;
    forEachBare(list, [&](int i, QChar c) {
        if (c == QLatin1Char(':') && !inGroup) {
            inGroup = true;
        } else if (c == QLatin1Char(';') || (c == QLatin1Char(',') && !inGroup)) {
            // The semicolon that ends a group belongs to it.
            texts.append(list.mid(start, i - start + (inGroup ? 1 : 0)));
            start = i + 1;
            inGroup = false;
        }
        return true;
    });
    texts.append(list.mid(start));
    return fromStringList(texts);
}

QList<QMailAddress> QMailAddress::fromStringList(const QStringList &list)
{
    QList<QMailAddress> addresses;
    for (const QString &text : list) {
        const QMailAddress address(text);
        if (!address.isNull())
            addresses.append(address);
    }
    return addresses;
}
