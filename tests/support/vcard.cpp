// SPDX-License-Identifier: LGPL-2.1-or-later
#include "support/vcard.h"

namespace {

/** Pieces between separators that are not escaped, without the escapes. */
QStringList pieces(const QString &value, QChar separator)
{
    QStringList list { QString() };
    for (int i = 0; i < value.size(); ++i) {
        const QChar c = value.at(i);
        if (c == QLatin1Char('\\') && i + 1 < value.size()) {
            const QChar escaped = value.at(++i);
            list.last() += escaped.toLower() == QLatin1Char('n') ? QChar(QLatin1Char('\n')) : escaped;
        } else if (c == separator) {
            list.append(QString());
        } else {
            list.last() += c;
        }
    }
    return list;
}

} // namespace

QString VCard::Property::text() const
{
    return pieces(value, QChar()).first();
}

QStringList VCard::Property::parts() const
{
    return pieces(value, QLatin1Char(';'));
}

QStringList VCard::Property::list() const
{
    return value.isEmpty() ? QStringList() : pieces(value, QLatin1Char(','));
}

VCard::VCard(const QString &text)
{
    QString unfolded = text;
    unfolded.remove(QLatin1Char('\r')).remove(QStringLiteral("\n ")).remove(QStringLiteral("\n\t"));
    const QStringList lines = unfolded.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    for (const QString &line : lines) {
        const int colon = line.indexOf(QLatin1Char(':'));
        QStringList head = line.left(colon).toUpper().split(QLatin1Char(';'));
        Property property;
        property.name = head.takeFirst();
        property.value = line.mid(colon + 1);
        for (QString &parameter : head) {
            if (parameter.startsWith(QLatin1String("TYPE=")))
                property.parameters += parameter.mid(5).split(QLatin1Char(','));
            else
                property.parameters.append(parameter);
        }
        if (colon > 0 && property.name != QLatin1String("BEGIN") && property.name != QLatin1String("END"))
            mProperties.append(property);
    }
}

QList<VCard::Property> VCard::all(const QString &name) const
{
    QList<Property> found;
    for (const Property &property : mProperties) {
        if (property.name == name)
            found.append(property);
    }
    return found;
}

VCard::Property VCard::first(const QString &name) const
{
    return all(name).value(0);
}

void VCard::set(const QString &name, const QString &value, const QStringList &parameters)
{
    for (int i = mProperties.size(); i-- > 0;) {
        if (mProperties.at(i).name == name)
            mProperties.removeAt(i);
    }
    mProperties.append({ name, parameters, value });
}

QByteArray VCard::toBytes() const
{
    QString text = QStringLiteral("BEGIN:VCARD\r\n");
    for (const Property &property : mProperties) {
        text += property.name;
        for (const QString &parameter : property.parameters) {
            const bool named = parameter.contains(QLatin1Char('='));
            text += QLatin1Char(';') + (named ? QString() : QStringLiteral("TYPE=")) + parameter;
        }
        text += QLatin1Char(':') + property.value + QStringLiteral("\r\n");
    }
    return (text + QStringLiteral("END:VCARD\r\n")).toUtf8();
}
