// SPDX-License-Identifier: LGPL-2.1-or-later
#include "protocol/wbxml/parserbase.h"

#include "application/base/logging.h"
#include "common/easrequeststatus.h"

ParserBase::ParserBase(QObject *parent)
    : QObject(parent)
{
}

ParserBase::~ParserBase() = default;

bool ParserBase::ready() const
{
    return mState == Finished && !mRefused;
}

void ParserBase::parse(const QByteArray &data)
{
    mElementStack.clear();
    mMentions.clear();
    mRefused = false;
    mState = NotStarted; // a parser that is used again must not show its last result
    if (!data.isEmpty())
        return;
    qCInfo(eas()) << "Nothing to parse";
    mState = Finished;
}

void ParserBase::onStartDocument()
{
    mState = TopLevel;
}

void ParserBase::onEndDocument()
{
    if (mState == TopLevel) {
        mState = Finished;
        return;
    }
    qCCritical(eas()) << "Unexpected state: " << mState;
    mState = Failed;
}

void ParserBase::onStartElement(uint codePage, uint token)
{
    if (mState != TopLevel && mState != InElement) {
        qCCritical(eas()) << "Unexpected state: " << mState;
        mState = Failed;
        return;
    }
    mState = InElement;
    mElementStack.append({ static_cast<quint8>(codePage), static_cast<quint8>(token) });
}

void ParserBase::onEndElement(uint codePage, uint token)
{
    if (mState != TopLevel && mState != InElement) {
        qCCritical(eas()) << "Incorrect state: " << mState;
        mState = Failed;
        return;
    }
    mState = InElement;
    if (mElementStack.isEmpty() || mElementStack.constLast().codePage != codePage
        || mElementStack.constLast().token != token) {
        qCCritical(eas()) << "Top element does not match";
        mState = Failed;
        return;
    }
    mElementStack.removeLast();
    if (mElementStack.isEmpty())
        mState = TopLevel;
}

void ParserBase::onCharacters(const QString &text, const QByteArray &raw)
{
    if (mState != InElement) {
        qCCritical(eas()) << "Wrong state: " << mState;
        return;
    }
    if (mElementStack.isEmpty()) {
        qCCritical(eas()) << "Empty element stack";
        return;
    }
    const TokenId top = mElementStack.constLast();
    onContent(top.codePage, top.token, text, raw);
}

void ParserBase::onContent(uint codePage, uint token, const QString &text, const QByteArray &raw)
{
    Q_UNUSED(raw)
    qCInfo(eas()) << "Unhandled content, page: " << codePage << ", token: " << token << ", content: " << text;
}

void ParserBase::onProcessingInstruction(const QString &target, const QString &data)
{
    qCInfo(eas()) << "Unhandled PI: target: " << target << ", data: " << data;
}

bool ParserBase::stringToInt(const QString &text, int &value, int base)
{
    bool converted = false;
    const int number = text.toInt(&converted, base);
    if (converted)
        value = number;
    return converted;
}

bool ParserBase::stringToUint(const QString &text, uint &value, int base)
{
    bool converted = false;
    const uint number = text.toUInt(&converted, base);
    if (converted)
        value = number;
    return converted;
}

int ParserBase::toStatus(const QString &text, const char *failure)
{
    constexpr int Highest = 999;
    int status = 0;
    if (stringToInt(text, status) && status >= 0 && status <= Highest)
        return status;
    qCWarning(eas()) << failure << text;
    return EasRequestStatus::RequestStatusInternalError;
}

bool ParserBase::isFirst(const char *what, uint codePage, uint token)
{
    constexpr uint TokensOfAPage = 256;
    return mMentions.isFirst(what, codePage * TokensOfAPage + token);
}

void ParserBase::refuse(const char *reason)
{
    if (!mRefused)
        qCCritical(eas()) << "Refused a reply:" << reason;
    mRefused = true;
}
