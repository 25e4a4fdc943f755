// SPDX-License-Identifier: LGPL-2.1-or-later
#include "simulator/searchresults.h"

#include "simulator/email.h"

#include <algorithm>

namespace Simulator {
namespace {

using SearchResults::MailQuery;

QString searchedText(const Email &email)
{
    const EmailHeaders &headers = email.content().headers();
    return QStringList { headers.subject, headers.from, headers.to, headers.cc,
        email.content().bodies().plain }
        .join(QLatin1Char('\n'));
}

bool matchesQuery(const Email &email, const MailQuery &query)
{
    if (query.after.isValid() && email.date() <= query.after)
        return false;
    if (query.before.isValid() && email.date() >= query.before)
        return false;
    if (query.words.isEmpty())
        return true;
    const QString text = searchedText(email);
    return std::all_of(query.words.cbegin(), query.words.cend(),
        [&text](const QString &word) { return text.contains(word, Qt::CaseInsensitive); });
}

bool isSearched(const Mailbox &mailbox, const MailFolder &folder, const MailQuery &query)
{
    if (query.folderIds.isEmpty())
        return folder.type != DeletedItemsFolder;
    for (MailFolder current = folder; !current.id.isEmpty(); current = mailbox.folder(current.parentId)) {
        if (query.folderIds.contains(current.id))
            return true;
        if (!query.isDeep)
            return false;
    }
    return false;
}

} // namespace

QStringList SearchResults::matches(const Mailbox &mailbox, const MailQuery &query)
{
    QVector<QPair<QDateTime, QString>> found;
    const QVector<MailFolder> folders = mailbox.folders();
    for (const MailFolder &folder : folders) {
        if (!isSearched(mailbox, folder, query))
            continue;
        const QVector<ItemEntry> entries = mailbox.items(folder.id);
        for (const ItemEntry &entry : entries) {
            const auto email = std::dynamic_pointer_cast<const Email>(entry.item);
            if (email && matchesQuery(*email, query))
                found.append({ email->date(), entry.serverId });
        }
    }
    std::stable_sort(found.begin(), found.end(),
        [](const auto &left, const auto &right) { return left.first > right.first; });
    QStringList ids;
    for (const auto &entry : qAsConst(found))
        ids.append(entry.second);
    return ids;
}

SearchResults::Part SearchResults::Part::of(const QString &range, int count, int usualCount)
{
    Part part;
    bool isFirst = true;
    bool isLast = true;
    part.last = usualCount - 1;
    if (!range.isEmpty()) {
        part.first = range.section(QLatin1Char('-'), 0, 0).toInt(&isFirst);
        part.last = range.section(QLatin1Char('-'), 1).toInt(&isLast);
    }
    part.last = std::min(part.last, count - 1);
    return isFirst && isLast && part.first >= 0 ? part : Part();
}

} // namespace Simulator
