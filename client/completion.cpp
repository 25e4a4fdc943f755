// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/completion.h"

#include "client/commandtable.h"

#include <QRegularExpression>

#include <algorithm>
#include <optional>

namespace {

const auto AccountOption = QStringLiteral("--account");

const QStringList &commonOptions()
{
    static const QStringList options { AccountOption, QStringLiteral("--help"), QStringLiteral("--json"),
        QStringLiteral("--progress") };
    return options;
}

bool isOption(const QString &word)
{
    return word.startsWith(QLatin1Char('-'));
}

/** The options before the command, taken off the words that were typed. */
void dropOptions(QStringList &words)
{
    while (!words.isEmpty() && isOption(words.first())) {
        if (words.takeFirst() == AccountOption && !words.isEmpty())
            words.removeFirst();
    }
}

const Command *named(const QString &name)
{
    const QList<Command> &commands = CommandTable::commands();
    const auto found = std::find_if(commands.cbegin(), commands.cend(),
        [&name](const Command &command) { return name == QLatin1String(command.name); });
    return found == commands.cend() ? nullptr : &*found;
}

/** The words of a command's usage without brackets; another command's where it refers to its options. */
QStringList usageOf(const Command &command)
{
    static const QRegularExpression reference(QStringLiteral("\\[the options of ([a-z ]+)\\]"));
    static const QRegularExpression separators(QStringLiteral("[\\[\\] ]"));
    QString usage = QString::fromLatin1(command.arguments);
    const QRegularExpressionMatch match = reference.match(usage);
    QStringList words;
    if (match.hasMatch()) {
        usage.remove(match.captured());
        const Command *const other = named(match.captured(1));
        Q_ASSERT(other);
        words = usageOf(*other).filter(QRegularExpression(QStringLiteral("^-|\\|")));
    }
    return usage.split(separators, Qt::SkipEmptyParts) + words;
}

/** The choices of a word such as "mail|calendar|contacts"; none for a single one. */
QStringList choicesOf(const QString &word)
{
    static const QRegularExpression choices(QStringLiteral("^[a-z]+(\\|[a-z]+)+$"));
    return choices.match(word).hasMatch() ? word.split(QLatin1Char('|')) : QStringList();
}

QStringList optionsOf(const QStringList &usage)
{
    QStringList options = commonOptions();
    for (const QString &word : usage) {
        for (const QString &choice : word.split(QLatin1Char('|'))) {
            if (choice.startsWith(QLatin1String("--")))
                options.append(choice);
        }
    }
    return options;
}

/** What an option takes: the values, none of them where only the user knows; nothing if it takes no value. */
std::optional<QStringList> valuesOf(const QStringList &usage, const QString &option)
{
    for (int i = 0; i + 1 < usage.size(); ++i) {
        if (usage.at(i).split(QLatin1Char('|')).contains(option) && !isOption(usage.at(i + 1)))
            return choicesOf(usage.at(i + 1));
    }
    return std::nullopt;
}

/** What may stand alone, by the usage's first word that is no option. */
QStringList argumentsOf(const QStringList &usage, Completion::Accounts accounts)
{
    if (usage.isEmpty())
        return {};
    return usage.first() == QLatin1String("ACCOUNT") ? accounts() : choicesOf(usage.first());
}

/** Of the commands that begin with these words, the next one. */
QStringList nextWords(const QStringList &words)
{
    QStringList next;
    if (words.isEmpty())
        next = commonOptions() + QStringList { QStringLiteral("--version"), QStringLiteral("help") };
    const QList<Command> commands = CommandTable::beginningWith(words);
    for (const Command &command : commands) {
        const QString word = QString::fromLatin1(command.name).split(QLatin1Char(' ')).value(words.size());
        if (!word.isEmpty())
            next.append(word);
    }
    return next;
}

QStringList choices(QStringList before, bool wantsOption, Completion::Accounts accounts)
{
    const QString previous = before.isEmpty() ? QString() : before.last();
    if (previous == AccountOption)
        return accounts();
    dropOptions(before);
    if (before.value(0) == QLatin1String("help"))
        return nextWords(before.mid(1)).filter(QRegularExpression(QStringLiteral("^(?!-|help)")));
    const Command *const command = CommandTable::take(before);
    if (!command)
        return nextWords(before);
    const QStringList usage = usageOf(*command);
    const std::optional<QStringList> values = valuesOf(usage, previous);
    if (values)
        return *values;
    return wantsOption ? optionsOf(usage) : argumentsOf(usage, accounts);
}

} // namespace

QStringList Completion::candidates(const QStringList &words, Accounts accounts)
{
    const QString last = words.isEmpty() ? QString() : words.last();
    QStringList found;
    for (const QString &word : choices(words.mid(0, words.size() - 1), isOption(last), accounts)) {
        if (word.startsWith(last))
            found.append(word);
    }
    found.removeDuplicates();
    found.sort();
    return found;
}
