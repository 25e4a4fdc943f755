// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/fetchfilerequest.h"

#include "application/account/easaccount.h"
#include "application/base/logging.h"
#include "common/exchangeactivesync.h"
#include "protocol/base/eas.h"
#include "protocol/fetchitemcommand.h"

#include <limits>

void FetchFileRequest::startRequest()
{
    EasAccount *easAccount = account();
    if (!easAccount) {
        qCCritical(eas()) << "No account";
        return completeWith(RequestStatusInternalError);
    }
    QString fileReference;
    int estimatedSize = 0;
    if (!findFile(*easAccount, &fileReference, &estimatedSize))
        return completeWith(RequestStatusInternalError);
    mAnnouncedSize = estimatedSize;
    // Of a file without bytes there is no range.
    if (estimatedSize == 0)
        setPartSize(0);
    FetchItemCommand *command = newFileCommand(fileReference);
    command->setEstimatedDataSize(estimatedSize);
    command->start();
}

FetchItemCommand *FetchFileRequest::newFileCommand(const QString &fileReference)
{
    FetchItemCommand *command = newFetchCommand();
    command->setFileReference(fileReference);
    command->setAcceptMultipart(mPartSize != 0);
    if (mPartSize != 0)
        command->setRange(mOctets.size(), mOctets.size() + int(mPartSize) - 1);
    connect(command, &FetchItemCommand::downloadProgress, this, &FetchFileRequest::onDownloadProgress);
    return command;
}

void FetchFileRequest::retrySend()
{
    if (!consumeRetry())
        return;
    if (!currentCommand()) {
        qCInfo(eas()) << "command is null, starting request from scratch";
        return startRequest();
    }
    currentCommand()->start();
}

void FetchFileRequest::onDownloadProgress(qlonglong bytesReceived, qlonglong bytesTotal)
{
    qCDebug(eas()) << "Downloaded" << bytesReceived << "of" << bytesTotal;
    // A range tells its own length only; the whole is reported as the ranges arrive.
    if (mPartSize == 0)
        Q_EMIT requestDownloadProgress(accountId(), id(), bytesReceived, bytesTotal);
}

void FetchFileRequest::onCommandFinished(bool success)
{
    if (!currentCommand())
        qCCritical(eas()) << "No command object";
    if (!acceptResult(currentCommand(), success)) {
        if (currentCommand())
            qCInfo(eas()) << "ItemOperations request paused. Provision request started";
        return dropCommand();
    }
    if (success && endsFileOrRanges())
        return;
    if (mPartSize == 0 || !success || !handleMultiPart())
        handleFetchStatus(success);
}

int FetchFileRequest::fileStatus() const
{
    // In the single form the file has a status of its own.
    const QList<ItemOperationsFetchItem> items = fetchCommand()->fetchItems();
    return status() > Eas::ItemOperationsStatusSuccess || items.isEmpty() ? status() : items.first().status();
}

bool FetchFileRequest::endsFileOrRanges()
{
    switch (fileStatus()) {
    case Eas::ItemOperationsStatusFileIsEmpty:
        if (!mOctets.isEmpty())
            return false;
        break;
    case Eas::ItemOperationsStatusInvalidRange:
        if (mPartSize != 0 && mOctets.isEmpty()) {
            fetchWhole();
            return true;
        }
        // Behind the last byte of a file whose size the server does not say.
        if (mOctets.isEmpty() || mTotal >= 0)
            return false;
        break;
    default:
        return false;
    }
    finish();
    return true;
}

void FetchFileRequest::fetchWhole()
{
    qCInfo(eas()) << "the server has no ranges of the file, asking for all of it";
    setPartSize(0);
    dropCommand();
    startRequest();
}

bool FetchFileRequest::handleMultiPart()
{
    if (status() != Eas::ItemOperationsStatusSuccess)
        return false;
    // A server may answer in the single form although it was offered the other one.
    const FetchItemCommand &command = *fetchCommand();
    if (!command.hasPart() && !command.fetchItems().isEmpty())
        return false;
    if (!command.hasPart()) {
        qCWarning(eas()) << "The part of data was not received";
        completeWith(RequestStatusInternalError);
        return true;
    }
    takePiece({ command.partData(), command.partContentType(), command.partRange(), command.totalSize() });
    return true;
}

void FetchFileRequest::processCommandSuccess()
{
    const QList<ItemOperationsFetchItem> items = fetchCommand()->fetchItems();
    if (items.isEmpty())
        return completeWith(RequestStatusInternalError);
    const ItemOperationsFetchItem &item = items.first();
    if (item.status() > Eas::ItemOperationsStatusSuccess) {
        qCWarning(eas()) << "unhandled status" << item.status();
        return completeWith(item.status());
    }
    takePiece(
        { QByteArray::fromBase64(item.data().toLatin1()), item.contentType(), item.range(), item.total() });
}

void FetchFileRequest::takePiece(const Piece &piece)
{
    resetTimeoutFactor();
    clearRetries();
    const int before = mOctets.size();
    mTotal = piece.total;
    if (!piece.contentType.isEmpty())
        mContentType = piece.contentType;
    if (!append(piece))
        return completeWith(RequestStatusInternalError);
    // Some servers send nothing now and then for a file that they have announced with its size.
    const bool isMissing = mOctets.isEmpty() && mAnnouncedSize > 0;
    if (!isMissing && isComplete(piece))
        return finish();
    if (isMissing || mOctets.size() == before || mPartSize == 0) {
        qCWarning(eas()) << "The part of data was not received";
        return completeWith(RequestStatusInternalError);
    }
    requestNextPart();
}

bool FetchFileRequest::append(const Piece &piece)
{
    bool isNumber = false;
    const int told = piece.range.section(QLatin1Char('-'), 0, 0).toInt(&isNumber);
    const int start = isNumber ? told : mOctets.size();
    // A server that knows no ranges sends the whole file each time.
    const bool isWhole = start == 0 && piece.data.size() >= mOctets.size();
    const bool fits =
        start == mOctets.size() && piece.data.size() <= std::numeric_limits<int>::max() / 2 - start;
    if (isWhole)
        mOctets = FetchedOctets();
    if (isWhole || fits)
        return mOctets.append(piece.data);
    qCWarning(eas()) << "the part of data begins at" << start << "and was asked for from" << mOctets.size();
    return false;
}

bool FetchFileRequest::isComplete(const Piece &piece) const
{
    if (mTotal >= 0)
        return mOctets.size() >= mTotal;
    return mPartSize == 0 || piece.data.size() != int(mPartSize);
}

void FetchFileRequest::requestNextPart()
{
    const int start = mOctets.size();
    const int length = mTotal < 0 ? int(mPartSize) : qMin(mTotal - start, int(mPartSize));
    Q_EMIT requestDownloadProgress(accountId(), id(), start, mTotal);
    fetchCommand()->setRange(start, start + length - 1);
    fetchCommand()->start();
}

void FetchFileRequest::finish()
{
    const int size = mOctets.size();
    if (!store())
        return completeWith(RequestStatusInternalError);
    if (mPartSize != 0)
        Q_EMIT requestDownloadProgress(accountId(), id(), size, size);
    completeWith(RequestStatusSuccess);
}

bool FetchFileRequest::store()
{
    if (!account()) {
        qCCritical(eas()) << "No account";
        return false;
    }
    QString type;
    QString fileName;
    ExchangeActiveSync::getTypeParts(mContentType, &type, &fileName);
    return storeFile(*account(), type, mOctets, fileName);
}
