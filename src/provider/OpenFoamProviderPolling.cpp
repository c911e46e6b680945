// SPDX-License-Identifier: MIT
#include "provider/OpenFoamProvider.h"

#include <algorithm>
#include <iterator>

namespace {

/// What the first sorted list has and the second has not.
std::vector<dvn::Str> onlyInFirst(const std::vector<dvn::Str>& first, const std::vector<dvn::Str>& second)
{
    std::vector<dvn::Str> difference;
    std::set_difference(first.begin(), first.end(), second.begin(), second.end(), std::back_inserter(difference));
    return difference;
}

DDPString notifiedName(const OFState& state)
{
    return DDPString::fromChar(state.name().toStdString().c_str());
}

void notifyUpdate(DDPChangeNotifications* notifications, const OFState& state)
{
    notifications->updateState(state.id(), notifiedName(state), state.referenceValue());
}

void notifyAdd(DDPChangeNotifications* notifications, const OFState& state)
{
    notifications->addState(state.id(), notifiedName(state), state.referenceValue());
}

void notifyUpdateOfAll(DDPChangeNotifications* notifications, const OFReader& reader)
{
    for (std::size_t i = 0; i < reader.stateCount(); ++i) {
        notifyUpdate(notifications, reader.state(i));
    }
}

} // namespace

void OpenFoamProvider::pollForChanges(DDPChangeNotifications* notifications)
{
    if (m_runVerification) {
        runVerificationForChanges(notifications);
        return;
    }
    std::vector<dvn::Str> currentFolders;
    if (!m_reader.listCaseFolders(&currentFolders)) {
        // Not a change but a failure: the host keeps its states, and the next poll that can list the folder goes on.
        return;
    }
    // A copy, as the handlers change the reader's list.
    const std::vector<dvn::Str> knownFolders = m_reader.statesFolder();
    handleRemovedStates(notifications, currentFolders, knownFolders);
    handleAddedStates(notifications, currentFolders, knownFolders);
}

void OpenFoamProvider::runVerificationForChanges(DDPChangeNotifications* notifications)
{
    notifyUpdateOfAll(notifications, m_reader);
    m_runVerification = false;
}

void OpenFoamProvider::handleRemovedStates(DDPChangeNotifications* notifications,
                                           const std::vector<dvn::Str>& currentFolders,
                                           const std::vector<dvn::Str>& knownFolders)
{
    const std::vector<dvn::Str> removedFolders = onlyInFirst(knownFolders, currentFolders);
    if (removedFolders.empty()) {
        return;
    }
    m_runVerification = true;
    const std::size_t oldCount = m_reader.stateCount();
    for (const dvn::Str& folder : removedFolders) {
        // A folder that was no state changes nothing.
        (void)m_reader.deleteState(folder);
    }
    // The states left have new ids, which the host hears first.
    notifyUpdateOfAll(notifications, m_reader);
    // Positions, not ids, and one more than went: hosts cut their list by it.
    for (std::size_t position = m_reader.stateCount(); position <= oldCount; ++position) {
        notifications->removeState(static_cast<std::int32_t>(position));
    }
}

void OpenFoamProvider::handleAddedStates(DDPChangeNotifications* notifications,
                                         const std::vector<dvn::Str>& currentFolders,
                                         const std::vector<dvn::Str>& knownFolders)
{
    const std::vector<dvn::Str> addedFolders = onlyInFirst(currentFolders, knownFolders);
    if (addedFolders.empty()) {
        return;
    }
    m_runVerification = true;
    for (const dvn::Str& folder : addedFolders) {
        const OFState* const added = m_reader.stateById(m_reader.addState(folder));
        // A folder that is no time folder.
        if (added == nullptr) {
            continue;
        }
        const OFState& last = m_reader.state(m_reader.stateCount() - 1);
        if (added->id() != last.id()) {
            // Its id stood for another state until now, and the list grew by one at its end. The states in between
            // stand shifted until the next poll tells them all.
            notifyUpdate(notifications, *added);
        }
        notifyAdd(notifications, last);
    }
    // The new states' results get ids and links; the host hears of no new result.
    (void)addResultInfo(nullptr);
}
