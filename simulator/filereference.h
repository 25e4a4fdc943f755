// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QString>

namespace Simulator {

/** How attachments are named in fetches: by the item and the attachment's number in it. */
struct FileReference
{
    QString serverId;
    int attachment = -1; ///< -1 if the text is no reference

    static QString text(const QString &serverId, int attachment);
    static FileReference parse(const QString &text);
};

} // namespace Simulator
