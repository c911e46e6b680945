// SPDX-License-Identifier: MIT
#include "records/GroupInfo.h"

namespace {

DDPString copied(const dvn::Str& text)
{
    return DDPString(text.toUtf8().c_str());
}

void addFlagAndType(const GroupInfo& group, DDPElementGroupInfo* info)
{
    info->setBoundaryFlag(group.groupId, group.isBoundary ? 1 : 0);
    info->setGroupProperty(group.groupId, DDPString::fromChar("type"), copied(group.type));
}

} // namespace

void addTopLevelGroup(const GroupInfo& group, DDPElementGroupInfo* info)
{
    info->addGroup(group.groupId, copied(group.name));
    addFlagAndType(group, info);
}

void addGroupOfPart(const GroupInfo& group, int parentPartId, DDPElementGroupInfo* info)
{
    info->addGroup(group.groupId, copied(group.name));
    info->setParentPart(group.groupId, parentPartId);
    addFlagAndType(group, info);
}
