// SPDX-License-Identifier: LGPL-2.1-or-later
// How fast the mapping is written, which commits row by row, and read.
#include "benchrow.h"

#include "application/mapping/easdatabase.h"
#include "easitems/easemailitem.h"

#include <QCoreApplication>
#include <QLoggingCategory>

namespace {

constexpr EasAccountId account = 1;
constexpr int mailboxSize = 50000;
constexpr int windowSize = 100;

QList<EasEmailItem> window(int first)
{
    QList<EasEmailItem> items;
    for (int number = first; number < first + windowSize; ++number) {
        EasEmailItem item;
        item.setServerId(QStringLiteral("5:%1").arg(number));
        item.setCollectionId(QStringLiteral("5"));
        item.setLocalId(QString::number(number));
        items.append(item);
    }
    return items;
}

QStringList serverIds(const QList<EasEmailItem> &items)
{
    QStringList ids;
    for (const EasEmailItem &item : items)
        ids.append(item.serverId());
    return ids;
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    QLoggingCategory::setFilterRules(QStringLiteral("Fennel.*=false"));
    EasDatabase *database = EasDatabase::instance();

    const double start = BenchRow::processorSeconds();
    for (int first = 0; first < mailboxSize; first += windowSize) {
        if (!database->addEmailItems(account, window(first)))
            return 1;
    }
    const double written = BenchRow::processorSeconds() - start;
    std::printf("Mapping, %d messages\n", mailboxSize);
    BenchRow::print("rows written, one by one", mailboxSize / written, "rows/s");
    BenchRow::print("rows read",
        mailboxSize / BenchRow::seconds([database] { (void)database->serverToLocalEmailIds(account); }),
        "rows/s");
    const QStringList ids = serverIds(window(mailboxSize / 2));
    BenchRow::print("look-up of the messages of one reply",
        1e3 * BenchRow::seconds([database, &ids] { (void)database->emailCollectionIds(account, ids); }),
        "ms");
    EasDatabase::releaseInstance();
    return 0;
}
