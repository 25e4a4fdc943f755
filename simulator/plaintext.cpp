// SPDX-License-Identifier: LGPL-2.1-or-later
#include "simulator/plaintext.h"

#include <QRegularExpression>

namespace Simulator {
namespace {

QRegularExpression ignoringCase(const char *pattern)
{
    return QRegularExpression(QLatin1String(pattern),
        QRegularExpression::CaseInsensitiveOption | QRegularExpression::DotMatchesEverythingOption);
}

} // namespace

QString PlainText::fromHtml(const QString &html)
{
    static const QRegularExpression hidden = ignoringCase("<(style|script|head)\\b.*?</\\1\\s*>");
    static const QRegularExpression space = ignoringCase("\\s+");
    static const QRegularExpression breaks =
        ignoringCase("\\s*(<br\\s*/?>|</p>|</div>|</tr>|</h[1-6]>|</li>)\\s*");
    static const QRegularExpression tags = ignoringCase("<[^>]*>");
    QString text = html;
    text.remove(hidden);
    text.replace(space, QStringLiteral(" "));
    text.replace(breaks, QStringLiteral("\r\n"));
    text.remove(tags);
    const QPair<const char *, QChar> entities[] = { { "&nbsp;", QChar(0xA0) }, { "&lt;", QLatin1Char('<') },
        { "&gt;", QLatin1Char('>') }, { "&quot;", QLatin1Char('"') }, { "&#39;", QLatin1Char('\'') },
        { "&amp;", QLatin1Char('&') } };
    for (const auto &entity : entities)
        text.replace(QLatin1String(entity.first), QString(entity.second));
    return text.trimmed();
}

QString PlainText::toHtml(const QString &text)
{
    QString lines = text.toHtmlEscaped();
    lines.remove(QLatin1Char('\r'));
    lines.replace(QLatin1Char('\n'), QStringLiteral("<br>\r\n"));
    return QStringLiteral("<html><body>%1</body></html>").arg(lines);
}

QString PlainText::preview(const QString &text, int characters)
{
    return text.simplified().left(characters);
}

} // namespace Simulator
