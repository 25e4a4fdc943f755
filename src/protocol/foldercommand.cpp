// SPDX-License-Identifier: LGPL-2.1-or-later
#include "protocol/foldercommand.h"

#include "application/base/logging.h"
#include "easitems/algorithms/foldercommandresponseparser.h"
#include "protocol/wbxml/wbxmlencoder.h"

bool FolderCommand::encodeBody(EasAccount &, QByteArray *body)
{
    const char *refused = mSyncKey.isEmpty() ? "No sync key" : refusal();
    if (refused) {
        qCWarning(eas()) << refused;
        return false;
    }
    WbxmlEncoder encoder;
    encodeFolder(encoder);
    *body = encoder.encoded();
    return true;
}

bool FolderCommand::readReply(
    FolderCommandResponseParser &parser, const QByteArray &body, const ReplyTexts &texts)
{
    parser.parse(body);
    if (!parser.ready()) {
        qCWarning(eas()) << texts.failed;
        return false;
    }
    qCDebug(eas()) << texts.parsed;
    qCDebug(eas()) << "Status:" << parser.status() << "SyncKey:" << parser.syncKey();
    setStatus(parser.status());
    if (!parser.syncKey().isEmpty())
        mSyncKey = parser.syncKey();
    return true;
}
