// SPDX-License-Identifier: MIT
#include "provider/OpenFoamProvider.h"

#include <algorithm>
#include <iterator>

namespace {

/// The entries of the first sorted list that the second lacks.
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
    // Compatibility (docs/compatibility.md, "announce all on the next poll").
    if (m_runVerification) {
        runVerificationForChanges(notifications);
        return;
    }
    std::vector<dvn::Str> currentFolders;
    if (!m_reader.listCaseFolders(&currentFolders)) {
        // Not a change but a failure: the host keeps its states, and the next poll tries again.
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
        // A folder that was not a state changes nothing.
        (void)m_reader.deleteState(folder);
    }
    // The remaining states have new ids, which are announced first.
    notifyUpdateOfAll(notifications, m_reader);
    // Compatibility (docs/compatibility.md, "remove one more position"): positions, not ids, and one more than were
    // removed.
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
        // A folder that is not a time folder.
        if (added == nullptr) {
            continue;
        }
        const OFState& last = m_reader.state(m_reader.stateCount() - 1);
        if (added->id() != last.id()) {
            // Its id belonged to another state until now, and the list grew by one at its end. The states in between
            // are shifted until the next poll announces them all.
            notifyUpdate(notifications, *added);
        }
        notifyAdd(notifications, last);
    }
    // Compatibility (docs/compatibility.md, "hidden new results"): the results get ids and links but are not announced.
    (void)addResultInfo(nullptr);
}
