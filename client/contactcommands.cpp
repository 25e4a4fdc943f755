// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/contactcommands.h"

#include "client/commandcontext.h"
#include "client/contactbook.h"
#include "client/contactoptions.h"
#include "client/contactview.h"
#include "client/exitstatus.h"
#include "client/outputfile.h"

#include <QtContacts/QContactName>
#include <QtContacts/QContactOrganization>

#include <QCommandLineParser>

#include <memory>

QTCONTACTS_USE_NAMESPACE

namespace {

const auto NextSync = QStringLiteral("; the next sync tells the server");

const QCommandLineOption FolderOption(QStringLiteral("folder"), QString(), QStringLiteral("name"));

/** What every command on contacts starts with: arguments, an account, its collections. */
class ContactSelection
{
public:
    explicit ContactSelection(const CommandContext &context)
        : mContext(context)
    {
    }

    QCommandLineParser &parser() { return mParser; }
    QString argument() const { return mParser.positionalArguments().value(0); }
    ContactBook &book() { return *mBook; }
    int exitStatus() const { return mExitStatus; }

    /** False, with exitStatus() set and an error printed, if there is nothing to work on. */
    bool open(int fewestArguments, int mostArguments);
    bool selectFolder(std::optional<QContactCollection> *folder);
    bool selectContact(QContact *contact);

private:
    bool fail(int exitStatus)
    {
        mExitStatus = exitStatus;
        return false;
    }

    const CommandContext &mContext;
    QCommandLineParser mParser;
    std::unique_ptr<ContactBook> mBook;
    int mExitStatus = ExitSuccess;
};

bool ContactSelection::open(int fewestArguments, int mostArguments)
{
    if (!mContext.parse(mParser, fewestArguments, mostArguments))
        return fail(ExitUsage);
    const EasAccountId account = mContext.accountId();
    if (account == 0)
        return fail(ExitNotFound);
    mBook = std::make_unique<ContactBook>(account);
    return mBook->open() || fail(ExitUnavailable);
}

bool ContactSelection::selectFolder(std::optional<QContactCollection> *folder)
{
    if (!mParser.isSet(FolderOption))
        return true;
    *folder = mBook->collection(mParser.value(FolderOption));
    return *folder || fail(ExitNotFound);
}

bool ContactSelection::selectContact(QContact *contact)
{
    *contact = mBook->find(argument());
    return !contact->id().isNull() || fail(ExitNotFound);
}

} // namespace

int ContactCommands::list(const CommandContext &context)
{
    ContactSelection contacts(context);
    contacts.parser().addOption(FolderOption);
    std::optional<QContactCollection> folder;
    if (!contacts.open(0, 1) || !contacts.selectFolder(&folder))
        return contacts.exitStatus();
    QJsonArray rows;
    const QList<QContact> all = contacts.book().contacts(folder);
    for (const QContact &contact : all) {
        if (ContactView::matches(contact, contacts.argument()))
            rows.append(ContactView::describe(contact));
    }
    context.output().rows(
        { { QStringLiteral("id"), QStringLiteral("ID") }, { QStringLiteral("name"), QStringLiteral("NAME") },
            { QStringLiteral("company"), QStringLiteral("COMPANY") },
            { QStringLiteral("emails"), QStringLiteral("EMAIL") },
            { QStringLiteral("phones"), QStringLiteral("PHONE") } },
        rows);
    return ExitSuccess;
}

int ContactCommands::show(const CommandContext &context)
{
    ContactSelection contacts(context);
    QContact contact;
    if (!contacts.open(1, 1) || !contacts.selectContact(&contact))
        return contacts.exitStatus();
    context.output().object(ContactView::describeWhole(contact));
    return ExitSuccess;
}

int ContactCommands::add(const CommandContext &context)
{
    ContactSelection contacts(context);
    const ContactOptions options(contacts.parser());
    contacts.parser().addOption(FolderOption);
    if (!contacts.open(0, 0))
        return contacts.exitStatus();
    const std::optional<QContactCollection> folder =
        contacts.book().collection(contacts.parser().value(FolderOption));
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
    if (!contacts.book().save(&contact))
        return ExitFailure;
    if (context.output().isJson())
        context.output().object(ContactView::describeWhole(contact));
    context.output().message(
        QStringLiteral("contact %1 added to %2").arg(ContactBook::number(contact), ContactBook::name(*folder))
        + NextSync);
    return ExitSuccess;
}

int ContactCommands::edit(const CommandContext &context)
{
    ContactSelection contacts(context);
    const ContactOptions options(contacts.parser());
    QContact contact;
    if (!contacts.open(1, 1) || !contacts.selectContact(&contact))
        return contacts.exitStatus();
    if (!options.saysSomething()) {
        Output::error(QStringLiteral("nothing to change; see fennel-easctl help"));
        return ExitUsage;
    }
    if (!options.apply(contact))
        return ExitUsage;
    if (!contacts.book().save(&contact))
        return ExitFailure;
    context.output().message(QStringLiteral("contact %1 changed").arg(contacts.argument()) + NextSync);
    return ExitSuccess;
}

int ContactCommands::remove(const CommandContext &context)
{
    ContactSelection contacts(context);
    QContact contact;
    if (!contacts.open(1, 1) || !contacts.selectContact(&contact))
        return contacts.exitStatus();
    if (!contacts.book().remove(contact))
        return ExitFailure;
    context.output().message(QStringLiteral("contact %1 deleted").arg(contacts.argument()) + NextSync);
    return ExitSuccess;
}

int ContactCommands::exportCards(const CommandContext &context)
{
    ContactSelection contacts(context);
    const QCommandLineOption force(QStringLiteral("force"));
    contacts.parser().addOptions({ FolderOption, force });
    std::optional<QContactCollection> folder;
    if (!contacts.open(0, 1) || !contacts.selectFolder(&folder))
        return contacts.exitStatus();
    const QByteArray cards = ContactView::toVCard(contacts.book().contacts(folder));
    return OutputFile::writeOrPrint(contacts.argument(), cards, contacts.parser().isSet(force)) ? ExitSuccess
                                                                                                : ExitFailure;
}
