// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/textoption.h"

#include "client/inputfile.h"
#include "client/output.h"

TextOption::TextOption(QCommandLineParser &parser, const QString &name)
    : mParser(parser)
    , mTextOption(name, QString(), QStringLiteral("text"))
    , mFileOption(name + QStringLiteral("-file"), QString(), QStringLiteral("file"))
{
    mParser.addOption(mTextOption);
    mParser.addOption(mFileOption);
}

bool TextOption::read()
{
    const bool hasText = mParser.isSet(mTextOption);
    if (hasText && mParser.isSet(mFileOption)) {
        Output::error(QStringLiteral("--%1 and --%2 exclude each other")
                          .arg(mTextOption.names().first(), mFileOption.names().first()));
        return false;
    }
    if (hasText)
        mText = mParser.value(mTextOption);
    if (!mParser.isSet(mFileOption))
        return true;
    QByteArray data;
    if (!InputFile::read(mParser.value(mFileOption), &data))
        return false;
    if (data.endsWith('\n'))
        data.chop(1);
    mText = QString::fromUtf8(data);
    return true;
}
