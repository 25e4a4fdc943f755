// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/fetchfilerequest.h"

#include "application/account/easaccount.h"
#include "application/base/logging.h"
#include "common/exchangeactivesync.h"
#include "protocol/base/eas.h"
#include "protocol/fetchitemcommand.h"

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
        command->setRange(mData.size(), mData.size() + int(mPartSize) - 1);
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
    if (mPartSize == 0 || !success || !handleMultiPart())
        handleFetchStatus(success);
}

bool FetchFileRequest::handleMultiPart()
{
    if (status() != Eas::ItemOperationsStatusSuccess)
        return false;
    // A server may answer in the single form although it was offered the other one.
    if (fetchCommand()->partData().isEmpty() && !fetchCommand()->fetchItems().isEmpty())
        return false;
    takePart();
    return true;
}

void FetchFileRequest::takePart()
{
    const FetchItemCommand &command = *fetchCommand();
    if (command.totalSize() < 0 || command.partData().isEmpty()) {
        qCWarning(eas()) << "The part of data was not received";
        return completeWith(RequestStatusInternalError);
    }
    resetTimeoutFactor();
    clearRetries();
    mData.append(command.partData());
    if (command.totalSize() > mData.size())
        return requestNextPart(command.totalSize());
    if (!store(command.partContentType(), mData))
        return completeWith(RequestStatusInternalError);
    Q_EMIT requestDownloadProgress(accountId(), id(), mData.size(), mData.size());
    completeWith(RequestStatusSuccess);
}

void FetchFileRequest::requestNextPart(int total)
{
    const int start = mData.size();
    Q_EMIT requestDownloadProgress(accountId(), id(), start, total);
    fetchCommand()->setRange(start, start + qMin(total - start, int(mPartSize)) - 1);
    fetchCommand()->start();
}

void FetchFileRequest::processCommandSuccess()
{
    int result = RequestStatusSuccess;
    const QList<ItemOperationsFetchItem> items = fetchCommand()->fetchItems();
    if (items.isEmpty())
        result = RequestStatusInternalError;
    for (const ItemOperationsFetchItem &item : items) {
        const QByteArray data = QByteArray::fromBase64(item.data().toLatin1());
        if (item.status() > Eas::ItemOperationsStatusSuccess) {
            qCWarning(eas()) << "unhandled status" << item.status();
            result = item.status();
        } else if (item.total() > data.size() || !store(item.contentType(), data)) {
            result = RequestStatusInternalError;
        }
    }
    completeWith(result);
}

bool FetchFileRequest::store(const QString &contentType, const QByteArray &data)
{
    if (!account()) {
        qCCritical(eas()) << "No account";
        return false;
    }
    QString type;
    QString fileName;
    ExchangeActiveSync::getTypeParts(contentType, &type, &fileName);
    return storeFile(*account(), type, data, fileName);
}
