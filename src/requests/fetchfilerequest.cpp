// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/fetchfilerequest.h"

#include "application/easaccount.h"
#include "application/logging.h"
#include "common/exchangeactivesync.h"
#include "protocol/eas.h"
#include "protocol/fetchitemcommand.h"
#include "protocol/protocolutils.h"

QString FetchFileRequest::commandName() const
{
    return ProtocolUtils::CommandItemOperations;
}

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
    createCommand(fileReference);
    mCommand->setEstimatedDataSize(estimatedSize);
    mCommand->start();
}

void FetchFileRequest::createCommand(const QString &fileReference)
{
    dropCommand();
    mCommand = new FetchItemCommand(accountId(), this);
    mCommand->setStore(ProtocolUtils::StorageMailbox);
    mCommand->setFileReference(fileReference);
    mCommand->setAcceptMultipart(mPartSize != 0);
    if (mPartSize != 0)
        mCommand->setRange(mData.size(), mData.size() + int(mPartSize) - 1);
    connect(mCommand, &FetchItemCommand::finished, this, &FetchFileRequest::onCommandFinished);
    connect(mCommand, &FetchItemCommand::downloadProgress, this, &FetchFileRequest::onDownloadProgress);
}

void FetchFileRequest::dropCommand()
{
    if (!mCommand)
        return;
    mCommand->disconnect(this);
    mCommand->deleteLater();
    mCommand.clear();
}

void FetchFileRequest::cancelRequest()
{
    if (mCommand)
        mCommand->stop();
}

void FetchFileRequest::retrySend()
{
    if (!consumeRetry())
        return;
    if (!mCommand) {
        qCInfo(eas()) << "command is null, starting request from scratch";
        return startRequest();
    }
    mCommand->start();
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
    if (!mCommand)
        qCCritical(eas()) << "No command object";
    if (!acceptResult(mCommand, success)) {
        if (mCommand)
            qCInfo(eas()) << "ItemOperations request paused. Provision request started";
        return dropCommand();
    }
    if (mPartSize != 0 && success && handleMultiPart())
        return;
    const StatusRows rows = {
        { { 0, Eas::ItemOperationsStatusSuccess },
            [this, success] {
                if (success)
                    return processCommandSuccess();
                qCWarning(eas()) << "Success: "
                                 << "false"
                                 << ", status:" << status();
                completeWith(RequestStatusInternalError);
            } },
    };
    if (!handleCommonStatus(status(), rows)) {
        qCWarning(eas()) << "unhandled status" << status();
        complete();
    }
}

bool FetchFileRequest::handleMultiPart()
{
    if (status() != Eas::ItemOperationsStatusSuccess)
        return false;
    // A server may answer in the single form although it was offered the other one.
    if (mCommand->partData().isEmpty() && !mCommand->fetchItems().isEmpty())
        return false;
    takePart();
    return true;
}

void FetchFileRequest::takePart()
{
    if (mCommand->totalSize() < 0 || mCommand->partData().isEmpty()) {
        qCWarning(eas()) << "The part of data was not received";
        return completeWith(RequestStatusInternalError);
    }
    resetTimeoutFactor();
    clearRetries();
    mData.append(mCommand->partData());
    if (mCommand->totalSize() > mData.size())
        return requestNextPart();
    if (!store(mCommand->partContentType(), mData))
        return completeWith(RequestStatusInternalError);
    Q_EMIT requestDownloadProgress(accountId(), id(), mData.size(), mData.size());
    completeWith(RequestStatusSuccess);
}

void FetchFileRequest::requestNextPart()
{
    const int total = mCommand->totalSize();
    const int start = mData.size();
    Q_EMIT requestDownloadProgress(accountId(), id(), start, total);
    mCommand->setRange(start, start + qMin(total - start, int(mPartSize)) - 1);
    mCommand->start();
}

void FetchFileRequest::processCommandSuccess()
{
    int result = RequestStatusSuccess;
    const QList<ItemOperationsFetchItem> items = mCommand->fetchItems();
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
