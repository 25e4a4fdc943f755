// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QString>

namespace Simulator {

/** The simple conversions between body types that a server does when asked for the other one. */
namespace PlainText {

QString fromHtml(const QString &html);
QString toHtml(const QString &text);
/** The first @p characters on one line. */
QString preview(const QString &text, int characters);

} // namespace PlainText
} // namespace Simulator
