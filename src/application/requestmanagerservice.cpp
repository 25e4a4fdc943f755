// SPDX-License-Identifier: LGPL-2.1-or-later
// How the manager and the service thread are wired. They live on different threads, so every signal that
// crosses is queued with a copy of its values.
#include "application/requestmanager.h"
#include "dbus/dbusinterfacethread.h"

void RequestManager::connectCalls()
{
    using Service = DBusInterfaceThread;
    using Manager = RequestManager;
    Service *const service = mDBusThread.get();
    connect(service, &Service::requestedQuit, this, &Manager::onQuitRequest);
    connect(service, &Service::requestedReconfig, this, &Manager::onReconfigRequest);
    connect(service, &Service::requestedCancelRequest, this, &Manager::onCancelRequest);
    connect(service, &Service::requestedSync, this, &Manager::onFullSyncRequest);
    connect(service, &Service::requestedFoldersSync, this, &Manager::onFoldersSyncRequest);
    connect(service, &Service::requestedSyncFolders, this, &Manager::onSyncFoldersRequest);
    connect(service, &Service::requestedSyncService, this, &Manager::onSyncServiceRequest);
    connect(service, &Service::requestedSendMail, this, &Manager::onSendMailRequest);
    connect(service, &Service::requestedMeetingResponse, this, &Manager::onMeetingResponseRequest);
    connect(service, &Service::requestedMeetingResponseCalendar, this,
        &Manager::onMeetingResponseCalendarRequest);
    connect(service, &Service::requestedCreateFolder, this, &Manager::onCreateFolderRequest);
    connect(service, &Service::requestedUpdateFolder, this, &Manager::onUpdateFolderRequest);
    connect(service, &Service::requestedDownloadCalendarAttachment, this,
        &Manager::onCalendarAttachmentDownloadRequest);
    connect(service, &Service::requestedDeleteFolder, this, &Manager::onDeleteFolderRequest);
    connect(service, &Service::requestedProvisionPolicy, this, &Manager::onProvisionPolicyRequest);
    connect(service, &Service::requestedDownloadMessagePart, this, &Manager::onDownloadMessagePartRequest);
    connect(service, &Service::requestedSearchMessages, this, &Manager::onSearchMessagesRequest);
    connect(service, &Service::requestedSearchGAL, this, &Manager::onSearchGALRequest);
    connect(service, &Service::requestedFind, this, &Manager::onFindRequest);
    connect(service, &Service::requestedDownloadMessages, this, &Manager::onDownloadMessagesRequest);
    connect(service, &Service::requestedGetOofState, this, &Manager::onGetOofRequest);
    connect(service, &Service::requestedSetOofState, this, &Manager::onSetOofStateRequest);
    connect(service, &Service::requestedAttendeesAvailable, this, &Manager::onAttendeesAvailableRequest);
    connect(service, &Service::alwaysOnStatus, this, &Manager::onAlwaysOnStatus);
}

void RequestManager::connectReports()
{
    using Service = DBusInterfaceThread;
    using Manager = RequestManager;
    Service *const service = mDBusThread.get();
    connect(this, &Manager::requestFinished, service, &Service::reportRequestFinished);
    connect(this, &Manager::provisionRequestFinished, service, &Service::reportProvisionRequestFinished);
    connect(this, &Manager::searchMessagesFinished, service, &Service::reportSearchMessagesFinished);
    connect(this, &Manager::searchGALFinished, service, &Service::reportSearchGALFinished);
    connect(this, &Manager::findMessagesFinished, service, &Service::reportFindMessagesFinished);
    connect(this, &Manager::galItemReceived, service, &Service::reportGalItemReceived);
    connect(this, &Manager::requestProgress, service, &Service::reportRequestProgress);
    connect(this, &Manager::syncStarted, service, &Service::reportSyncStarted);
    connect(this, &Manager::syncCompleted, service, &Service::reportSyncCompleted);
    connect(this, &Manager::oofStateFetched, service, &Service::reportGetOofFinished);
    connect(this, &Manager::attendeesAvailableDataReady, service, &Service::attendeesAvailableDataReady);
}
