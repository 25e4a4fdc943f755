// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QString>

/** HTML of messages as text for a terminal. */
namespace HtmlText {

/**
 * The text between the tags. Line breaks of the source are blanks, as HTML has it, except within "pre"; a
 * break or the end of a block begins a new line. Named and numbered characters are resolved; unknown names
 * stay.
 */
QString toPlain(const QString &html);

} // namespace HtmlText
