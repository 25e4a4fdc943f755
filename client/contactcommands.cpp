// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/contactcommands.h"

#include "client/contactbook.h"
#include "client/contactcards.h"
#include "client/contactoptions.h"
#include "client/contactview.h"
#include "client/inputfile.h"
#include "client/outputfile.h"
#include "client/selection.h"

QTCONTACTS_USE_NAMESPACE

namespace {

const auto NextSync = QStringLiteral("; the next sync tells the server");

const QCommandLineOption FolderOption(QStringLiteral("folder"), QString(), QStringLiteral("name"));

/** A command's account, its contacts, and those that it names. */
class ContactSelection : public Selection<ContactBook>
{
public:
    using Selection::Selection;

    /** The folder that the option names; nothing without it, which means all. */
    bool selectFolder(std::optional<QContactCollection> *folder);
    bool selectContact(const QString &number, QContact *contact);
    /** All of one folder, or of all folders. */
    bool load(const std::optional<QContactCollection> &folder, QList<QContact> *contacts);
};

bool ContactSelection::selectFolder(std::optional<QContactCollection> *folder)
{
    if (!parser().isSet(FolderOption))
        return true;
    *folder = store().collection(parser().value(FolderOption));
    return *folder || fail(ExitNotFound);
}

bool ContactSelection::selectContact(const QString &number, QContact *contact)
{
    QList<QContact> all;
    if (!load({}, &all))
        return false;
    for (const QContact &candidate : qAsConst(all)) {
        if (ContactBook::number(candidate) == number) {
            *contact = candidate;
            return true;
        }
    }
    return fail(ExitNotFound, QStringLiteral("there is no contact %1").arg(number));
}

bool ContactSelection::load(const std::optional<QContactCollection> &folder, QList<QContact> *contacts)
{
    return store().contacts(folder, contacts) || fail(ExitUnavailable);
}

} // namespace

int ContactCommands::list(CommandContext &context)
{
    ContactSelection selection(context);
    selection.parser().addOption(FolderOption);
    std::optional<QContactCollection> folder;
    QList<QContact> contacts;
    if (!selection.open(0, 1) || !selection.selectFolder(&folder) || !selection.load(folder, &contacts))
        return selection.exitStatus();
    QJsonArray rows;
    for (const QContact &contact : qAsConst(contacts)) {
        if (ContactView::matches(contact, selection.argument()))
            rows.append(ContactView::describe(contact));
    }
    context.output().rows({ { "id", "ID" }, { "name", "NAME" }, { "company", "COMPANY" },
                              { "emails", "EMAIL" }, { "phones", "PHONE" } },
        rows);
    return ExitSuccess;
}

int ContactCommands::show(CommandContext &context)
{
    ContactSelection selection(context);
    QContact contact;
    if (!selection.open(1, 1) || !selection.selectContact(selection.argument(), &contact))
        return selection.exitStatus();
    context.output().object(ContactView::columns(), ContactView::describeWhole(contact));
    return ExitSuccess;
}

int ContactCommands::add(CommandContext &context)
{
    ContactSelection selection(context);
    const ContactOptions options(selection.parser());
    selection.parser().addOption(FolderOption);
    if (!selection.open(0, 0))
        return selection.exitStatus();
    const std::optional<QContactCollection> folder =
        selection.store().collection(selection.parser().value(FolderOption));
    if (!folder)
        return ExitNotFound;
    QContact contact;
    contact.setCollectionId(folder->id());
    if (!options.apply(contact))
        return ExitUsage;
    if (ContactView::name(contact).isEmpty()) {
        Output::error(QStringLiteral("a contact needs a --name, a --company or an --email"));
        return ExitUsage;
    }
    if (!selection.store().save(&contact))
        return ExitFailure;
    context.output().done(
        QStringLiteral("contact %1 added to %2").arg(ContactBook::number(contact), ContactBook::name(*folder))
            + NextSync,
        ContactView::describeWhole(contact));
    return ExitSuccess;
}

int ContactCommands::edit(CommandContext &context)
{
    ContactSelection selection(context);
    const ContactOptions options(selection.parser());
    QContact contact;
    if (!selection.open(1, 1) || !selection.selectContact(selection.argument(), &contact))
        return selection.exitStatus();
    if (!options.saysSomething()) {
        Output::error(QStringLiteral("nothing to change; see fennel-easctl help contact edit"));
        return ExitUsage;
    }
    if (!options.apply(contact))
        return ExitUsage;
    if (!selection.store().save(&contact))
        return ExitFailure;
    context.output().done(QStringLiteral("contact %1 changed").arg(selection.argument()) + NextSync,
        ContactView::describeWhole(contact));
    return ExitSuccess;
}

int ContactCommands::remove(CommandContext &context)
{
    ContactSelection selection(context);
    if (!selection.open(1, -1))
        return selection.exitStatus();
    QList<QContact> contacts;
    const QStringList numbers = selection.arguments();
    for (const QString &number : numbers) {
        QContact contact;
        if (!selection.selectContact(number, &contact))
            return selection.exitStatus();
        contacts.append(contact);
    }
    for (const QContact &contact : qAsConst(contacts)) {
        if (!selection.store().remove(contact))
            return ExitFailure;
    }
    context.output().done(QStringLiteral("%1 contact(s) deleted").arg(contacts.size()) + NextSync,
        { { QStringLiteral("contacts"), QJsonArray::fromStringList(numbers) } });
    return ExitSuccess;
}

int ContactCommands::exportCards(CommandContext &context)
{
    ContactSelection selection(context);
    const QCommandLineOption force(QStringLiteral("force"));
    selection.parser().addOptions({ FolderOption, force });
    std::optional<QContactCollection> folder;
    QList<QContact> contacts;
    if (!selection.open(0, 1) || !selection.selectFolder(&folder) || !selection.load(folder, &contacts))
        return selection.exitStatus();
    QByteArray cards;
    const bool isWhole = ContactCards::write(contacts, &cards);
    const int written = OutputFile(context.output(), selection.parser().isSet(force))
                            .write(selection.argument(), cards, "text/vcard");
    return written == ExitSuccess && !isWhole ? int(ExitFailure) : written;
}

int ContactCommands::importCards(CommandContext &context)
{
    ContactSelection selection(context);
    selection.parser().addOption(FolderOption);
    if (!selection.open(1, 1))
        return selection.exitStatus();
    const std::optional<QContactCollection> folder =
        selection.store().collection(selection.parser().value(FolderOption));
    if (!folder)
        return ExitNotFound;
    QByteArray cards;
    QList<QContact> contacts;
    if (!InputFile::read(selection.argument(), &cards) || !ContactCards::read(cards, &contacts))
        return ExitFailure;
    QJsonArray numbers;
    for (QContact &contact : contacts) {
        contact.setCollectionId(folder->id());
        if (!selection.store().save(&contact))
            return ExitFailure;
        numbers.append(ContactBook::number(contact));
    }
    context.output().done(
        QStringLiteral("%1 contact(s) added to %2").arg(numbers.size()).arg(ContactBook::name(*folder))
            + NextSync,
        { { QStringLiteral("contacts"), numbers } });
    return ExitSuccess;
}
