// SPDX-License-Identifier: LGPL-2.1-or-later
#include "simulator/controlchannel.h"

#include "simulator/email.h"
#include "simulator/itemtext.h"
#include "simulator/mailboxdirectory.h"

#include <QFile>
#include <QProcess>

#include <cstdio>
#include <unistd.h>

using Simulator::Email;
using Simulator::ItemEntry;
using Simulator::ItemPtr;
using Simulator::MailFolder;
using Simulator::ServerPolicies;

namespace {

const QString noFolder = QStringLiteral("error no such folder");
const QString noItem = QStringLiteral("error no such item");
const QString notSet = QStringLiteral("error no such item, field, occurrence or value");

QString done(bool success, const QString &failure)
{
    return success ? QStringLiteral("ok") : failure;
}

} // namespace

const QVector<ControlChannel::Entry> &ControlChannel::entries()
{
    static const QVector<Entry> table {
        { "deliver", 1, &ControlChannel::deliver, "deliver FILE [FOLDER]" },
        { "delete", 2, &ControlChannel::remove, "delete FOLDER ITEM" },
        { "read", 2, &ControlChannel::read, "read FOLDER ITEM" },
        { "unread", 2, &ControlChannel::unread, "unread FOLDER ITEM" },
        { "move", 3, &ControlChannel::move, "move FOLDER ITEM TO-FOLDER" },
        { "list", 0, &ControlChannel::list, "list [FOLDER]" },
        { "add", 1, &ControlChannel::add, "add FILE.eml|.ics|.vcf [FOLDER]" },
        { "show", 2, &ControlChannel::show, "show FOLDER ITEM" },
        { "set", 4, &ControlChannel::set, "set FOLDER ITEM FIELD VALUE" },
        { "set-occurrence", 5, &ControlChannel::setOccurrence,
            "set-occurrence FOLDER ITEM YYYY-MM-DD FIELD VALUE" },
        { "delete-occurrence", 3, &ControlChannel::deleteOccurrence,
            "delete-occurrence FOLDER ITEM YYYY-MM-DD" },
        { "folders", 0, &ControlChannel::folders, "folders" },
        { "add-folder", 1, &ControlChannel::addFolder, "add-folder NAME [PARENT]" },
        { "rename-folder", 2, &ControlChannel::renameFolder, "rename-folder FOLDER NAME" },
        { "remove-folder", 1, &ControlChannel::removeFolder, "remove-folder FOLDER" },
        { "policy", 1, &ControlChannel::policy, "policy FILE.xml..." },
        { "allow-all", 0, &ControlChannel::allowAll, "allow-all [ELEMENT=VALUE...]" },
        { "no-policy", 0, &ControlChannel::noPolicy, "no-policy" },
        { "refresh-policy", 0, &ControlChannel::refreshPolicy, "refresh-policy" },
        { "demand", 2, &ControlChannel::demand, "demand key|compliance|new-keys on|off" },
        { "wipe", 1, &ControlChannel::wipe, "wipe device|account|off" },
        { "policy-status", 0, &ControlChannel::policyStatus, "policy-status" },
        { "expire-pings", 0, &ControlChannel::expirePings, "expire-pings" },
        { "heartbeats", 2, &ControlChannel::heartbeats, "heartbeats SHORTEST LONGEST" },
        { "as", 2, &ControlChannel::actAs, "as USER COMMAND..." },
        { "quit", 0, &ControlChannel::quit, "quit" },
    };
    return table;
}

ControlChannel::ControlChannel(Simulator::ExchangeServer &server, QObject *parent)
    : QObject(parent)
    , mServer(server)
    , mNotifier(STDIN_FILENO, QSocketNotifier::Read)
{
    connect(&mNotifier, &QSocketNotifier::activated, this, &ControlChannel::onReadable);
}

QString ControlChannel::help()
{
    QString text =
        QStringLiteral("Commands on standard input (FOLDER is a path of names or an identifier):\n");
    for (const Entry &entry : entries())
        text += QStringLiteral("  ") + QLatin1String(entry.usage) + QLatin1Char('\n');
    return text;
}

void ControlChannel::onReadable()
{
    char buffer[4096];
    const ssize_t size = ::read(STDIN_FILENO, buffer, sizeof(buffer));
    if (size <= 0) {
        // Whoever started the server is not going to say more; it goes on serving.
        mNotifier.setEnabled(false);
        return;
    }
    mInput.append(buffer, int(size));
    for (int end = mInput.indexOf('\n'); end >= 0; end = mInput.indexOf('\n')) {
        const QString line = QString::fromUtf8(mInput.left(end)).trimmed();
        mInput.remove(0, end + 1);
        if (line.isEmpty())
            continue;
        std::fputs(qUtf8Printable(run(line) + QLatin1Char('\n')), stdout);
        std::fflush(stdout);
    }
}

Simulator::Mailbox &ControlChannel::mailbox() const
{
    return mServer.mailbox(mUser);
}

QString ControlChannel::run(const QString &line)
{
    return runFor(QString(), QProcess::splitCommand(line));
}

QString ControlChannel::runFor(const QString &user, QStringList arguments)
{
    mUser = user;
    const QString name = arguments.isEmpty() ? QString() : arguments.takeFirst();
    for (const Entry &entry : entries()) {
        if (name != QLatin1String(entry.name))
            continue;
        if (arguments.size() < entry.fewestArguments)
            return QStringLiteral("error usage: ") + QLatin1String(entry.usage);
        return (this->*entry.command)(arguments);
    }
    return QStringLiteral("error no such command: ") + name;
}

QString ControlChannel::folderId(const QString &name) const
{
    const QString byPath = mailbox().folderByPath(name).id;
    return byPath.isEmpty() ? mailbox().folder(name).id : byPath;
}

QString ControlChannel::itemId(const QString &folder, const QString &item) const
{
    const QString id = item.contains(QLatin1Char(':')) ? item : folderId(folder) + QLatin1Char(':') + item;
    return mailbox().item(id) ? id : QString();
}

void ControlChannel::changePolicies(const std::function<void(ServerPolicies &)> &change)
{
    mServer.changePolicies(change, mUser);
}

QString ControlChannel::actAs(const Arguments &arguments)
{
    const QString user = arguments.first();
    return mServer.hasUser(user) ? runFor(user, arguments.mid(1)) : QStringLiteral("error no such user");
}

QString ControlChannel::deliver(const Arguments &arguments)
{
    QFile file(arguments.at(0));
    if (!file.open(QIODevice::ReadOnly))
        return QStringLiteral("error %1: %2").arg(file.fileName(), file.errorString());
    const QString folder = arguments.size() > 1 ? folderId(arguments.at(1)) : mailbox().inboxId();
    const QString id = mailbox().deliver(folder, file.readAll(), QDateTime::currentDateTimeUtc());
    return id.isEmpty() ? noFolder : QStringLiteral("ok ") + id;
}

QString ControlChannel::remove(const Arguments &arguments)
{
    return done(mailbox().remove(itemId(arguments.at(0), arguments.at(1))), noItem);
}

QString ControlChannel::setRead(const Arguments &arguments, bool isRead)
{
    return done(mailbox().setRead(itemId(arguments.at(0), arguments.at(1)), isRead), noItem);
}

QString ControlChannel::read(const Arguments &arguments)
{
    return setRead(arguments, true);
}

QString ControlChannel::unread(const Arguments &arguments)
{
    return setRead(arguments, false);
}

QString ControlChannel::move(const Arguments &arguments)
{
    const QString id = itemId(arguments.at(0), arguments.at(1));
    if (id.isEmpty())
        return noItem;
    const QString moved = mailbox().move(id, folderId(arguments.at(2)));
    return moved.isEmpty() ? noFolder : QStringLiteral("ok ") + moved;
}

QString ControlChannel::list(const Arguments &arguments)
{
    const QString folder = arguments.isEmpty() ? mailbox().inboxId() : folderId(arguments.first());
    if (folder.isEmpty())
        return noFolder;
    QString lines;
    const QVector<ItemEntry> entries = mailbox().items(folder);
    for (const ItemEntry &entry : entries) {
        const auto email = std::dynamic_pointer_cast<const Email>(entry.item);
        const QString mark = !email ? entry.item->className()
            : email->isRead()       ? QStringLiteral("read")
                                    : QStringLiteral("unread");
        lines += QStringLiteral("%1\t%2\t%3\t%4\n")
                     .arg(entry.serverId, mark, entry.item->date().toString(Qt::ISODate),
                         Simulator::ItemText::title(entry.item));
    }
    return lines + QStringLiteral("ok %1").arg(entries.size());
}

QString ControlChannel::add(const Arguments &arguments)
{
    const QString folder = arguments.size() > 1 ? folderId(arguments.at(1)) : QString();
    if (arguments.size() > 1 && folder.isEmpty())
        return noFolder;
    const QStringList ids = Simulator::MailboxDirectory::loadFile(arguments.at(0), mailbox(), folder);
    return ids.isEmpty() ? QStringLiteral("error nothing in ") + arguments.at(0)
                         : QStringLiteral("ok ") + ids.join(QLatin1Char(' '));
}

QString ControlChannel::show(const Arguments &arguments)
{
    const ItemPtr item = mailbox().item(itemId(arguments.at(0), arguments.at(1)));
    if (!item)
        return noItem;
    const QStringList lines = Simulator::ItemText::lines(item);
    return lines.join(QLatin1Char('\n')) + QStringLiteral("\nok %1").arg(lines.size());
}

QString ControlChannel::set(const Arguments &arguments)
{
    const QString id = itemId(arguments.at(0), arguments.at(1));
    return done(Simulator::ItemText::setField(mailbox(), id, arguments.at(2), arguments.at(3)), notSet);
}

QString ControlChannel::setOccurrence(const Arguments &arguments)
{
    const QString id = itemId(arguments.at(0), arguments.at(1));
    const QDate day = QDate::fromString(arguments.at(2), Qt::ISODate);
    return done(Simulator::ItemText::setOccurrenceField(mailbox(), id, day, arguments.at(3), arguments.at(4)),
        notSet);
}

QString ControlChannel::deleteOccurrence(const Arguments &arguments)
{
    const QString id = itemId(arguments.at(0), arguments.at(1));
    const QDate day = QDate::fromString(arguments.at(2), Qt::ISODate);
    return done(Simulator::ItemText::deleteOccurrence(mailbox(), id, day), notSet);
}

QString ControlChannel::folders(const Arguments &)
{
    QString lines;
    const QVector<MailFolder> all = mailbox().folders();
    for (const MailFolder &folder : all) {
        lines += QStringLiteral("%1\t%2\t%3\t%4\t%5\n")
                     .arg(folder.id, folder.parentId)
                     .arg(folder.type)
                     .arg(mailbox().itemCount(folder.id))
                     .arg(folder.name);
    }
    return lines + QStringLiteral("ok %1").arg(all.size());
}

QString ControlChannel::addFolder(const Arguments &arguments)
{
    const QString parent = arguments.size() > 1 ? folderId(arguments.at(1)) : QStringLiteral("0");
    const QString id = mailbox().addFolder(arguments.at(0), Simulator::UserMailFolder, parent);
    return id.isEmpty() ? noFolder : QStringLiteral("ok ") + id;
}

QString ControlChannel::renameFolder(const Arguments &arguments)
{
    return done(mailbox().renameFolder(folderId(arguments.at(0)), arguments.at(1)), noFolder);
}

QString ControlChannel::removeFolder(const Arguments &arguments)
{
    return done(mailbox().removeFolder(folderId(arguments.at(0))), noFolder);
}

QString ControlChannel::policy(const Arguments &arguments)
{
    QVector<Simulator::Policy> policies;
    for (const QString &fileName : arguments) {
        QFile file(fileName);
        if (!file.open(QIODevice::ReadOnly))
            return QStringLiteral("error %1: %2").arg(fileName, file.errorString());
        QString error;
        Simulator::Policy policy;
        policy.document = Simulator::WbxmlNode::fromXml(QString::fromUtf8(file.readAll()), &error);
        if (policy.document.name() != QLatin1String("Provision:EASProvisionDoc"))
            return QStringLiteral("error %1: no EASProvisionDoc %2").arg(fileName, error);
        policies.append(policy);
    }
    changePolicies([&policies](ServerPolicies &all) { all.setPolicies(policies); });
    return QStringLiteral("ok");
}

QString ControlChannel::allowAll(const Arguments &arguments)
{
    QMap<QString, QString> values;
    for (const QString &argument : arguments)
        values.insert(argument.section(QLatin1Char('='), 0, 0), argument.section(QLatin1Char('='), 1));
    changePolicies(
        [&values](ServerPolicies &all) { all.setPolicies({ Simulator::Policy::allowing(values) }); });
    return QStringLiteral("ok");
}

QString ControlChannel::noPolicy(const Arguments &)
{
    changePolicies([](ServerPolicies &all) { all.setPolicies({}); });
    return QStringLiteral("ok");
}

QString ControlChannel::refreshPolicy(const Arguments &)
{
    changePolicies([](ServerPolicies &all) { all.refresh(); });
    return QStringLiteral("ok");
}

QString ControlChannel::demand(const Arguments &arguments)
{
    static const QMap<QString, bool ServerPolicies::*> demands {
        { QStringLiteral("key"), &ServerPolicies::refusesKeyless },
        { QStringLiteral("compliance"), &ServerPolicies::wantsCompliance },
        { QStringLiteral("new-keys"), &ServerPolicies::forgetsKeys },
    };
    const auto demanded = demands.value(arguments.at(0));
    if (!demanded)
        return QStringLiteral("error no such demand: ") + arguments.at(0);
    const bool on = arguments.at(1) == QLatin1String("on");
    changePolicies([demanded, on](ServerPolicies &all) { all.*demanded = on; });
    return QStringLiteral("ok");
}

QString ControlChannel::wipe(const Arguments &arguments)
{
    static const QMap<QString, Simulator::Wipe> orders {
        { QStringLiteral("device"), Simulator::Wipe::Device },
        { QStringLiteral("account"), Simulator::Wipe::Account },
        { QStringLiteral("off"), Simulator::Wipe::None },
    };
    if (!orders.contains(arguments.first()))
        return QStringLiteral("error no such wipe: ") + arguments.first();
    const Simulator::Wipe order = orders.value(arguments.first());
    changePolicies([order](ServerPolicies &all) { all.orderWipe(order); });
    return QStringLiteral("ok");
}

QString ControlChannel::policyStatus(const Arguments &)
{
    const ServerPolicies policies = mServer.policies(mUser);
    QString lines;
    for (auto verdict = policies.verdicts.cbegin(); verdict != policies.verdicts.cend(); ++verdict)
        lines += QStringLiteral("policy\t%1\t%2\n").arg(verdict.key(), verdict.value());
    for (auto verdict = policies.wipeVerdicts.cbegin(); verdict != policies.wipeVerdicts.cend(); ++verdict)
        lines += QStringLiteral("wipe\t%1\t%2\n").arg(verdict.key(), verdict.value());
    return lines + QStringLiteral("ok %1").arg(policies.list.size());
}

QString ControlChannel::expirePings(const Arguments &)
{
    mServer.expirePings();
    return QStringLiteral("ok");
}

QString ControlChannel::heartbeats(const Arguments &arguments)
{
    const int shortest = arguments.at(0).toInt();
    const int longest = arguments.at(1).toInt();
    if (shortest < 1 || longest < shortest)
        return QStringLiteral("error no such range of seconds");
    mServer.setHeartbeatLimits(shortest, longest);
    return QStringLiteral("ok");
}

QString ControlChannel::quit(const Arguments &)
{
    QMetaObject::invokeMethod(this, &ControlChannel::quitRequested, Qt::QueuedConnection);
    return QStringLiteral("ok");
}
