// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/messagetext.h"

#include "client/exitstatus.h"
#include "client/inputfile.h"
#include "client/output.h"

#include <QCommandLineParser>
#include <QTextCodec>

#include <unistd.h>

namespace {

const auto Body = QStringLiteral("body");
const auto Text = QStringLiteral("text");
const auto StandardInput = QStringLiteral("-");

int fail(int exitStatus, const QString &error)
{
    Output::error(error);
    return exitStatus;
}

/** With line feeds alone; the exit status. */
int decode(const QByteArray &octets, QString *text)
{
    QTextCodec::ConverterState state;
    *text = QTextCodec::codecForName("UTF-8")->toUnicode(octets.constData(), octets.size(), &state);
    if (state.invalidChars > 0 || state.remainingChars > 0)
        return fail(ExitFailure, QStringLiteral("the text is not in UTF-8; attach the file instead"));
    if (text->contains(QChar(QChar::Null)))
        return fail(ExitFailure, QStringLiteral("the text holds a NUL; attach the file instead"));
    text->replace(QLatin1String("\r\n"), QLatin1String("\n")).replace(QLatin1Char('\r'), QLatin1Char('\n'));
    return ExitSuccess;
}

QString below(const QString &text, const QString &earlier)
{
    if (earlier.isEmpty())
        return text;
    const bool endsLine = text.isEmpty() || text.endsWith(QLatin1Char('\n'));
    return text + (endsLine ? QStringLiteral("\n") : QStringLiteral("\n\n")) + earlier;
}

} // namespace

MessageText::MessageText(QCommandLineParser &parser)
    : mParser(parser)
{
    parser.addOption(QCommandLineOption(Body, QString(), QStringLiteral("file")));
    parser.addOption(QCommandLineOption(Text, QString(), QStringLiteral("text")));
}

bool MessageText::isGiven() const
{
    return mParser.isSet(Body) || mParser.isSet(Text);
}

int MessageText::read(const QString &earlier, QString *text)
{
    QByteArray octets;
    bool holdsEarlier = false;
    const int source = readSource(earlier, &octets, &holdsEarlier);
    if (source != ExitSuccess)
        return source;
    const int decoded = decode(octets, text);
    if (decoded != ExitSuccess)
        keep();
    else if (!holdsEarlier)
        *text = below(*text, earlier);
    return decoded;
}

int MessageText::readSource(const QString &earlier, QByteArray *octets, bool *holdsEarlier)
{
    if (mParser.isSet(Body) && mParser.isSet(Text))
        return fail(ExitUsage, QStringLiteral("give --body or --text"));
    if (mParser.isSet(Text)) {
        *octets = mParser.value(Text).toUtf8();
        return ExitSuccess;
    }
    if (mParser.isSet(Body) || !isatty(STDIN_FILENO))
        return InputFile::read(mParser.isSet(Body) ? mParser.value(Body) : StandardInput, octets)
            ? int(ExitSuccess)
            : int(ExitFailure);
    *holdsEarlier = true;
    return readEditor(earlier, octets);
}

int MessageText::readEditor(const QString &earlier, QByteArray *octets)
{
    const QString start = below(QString(), earlier);
    const int edited = mEditor.edit(start, octets);
    if (edited == ExitSuccess && (octets->trimmed().isEmpty() || *octets == start.toUtf8()))
        return fail(ExitCancelled, QStringLiteral("nothing was written, so there is no message"));
    return edited;
}
