// SPDX-License-Identifier: MIT
#pragma once

#include "DvnCore/Str.h"
#include "interface/DataProviderInterface.h"

/// The description of one boundary, zone or sampled surface for the host.
struct GroupInfo
{
    int groupId = 0;
    dvn::Str name;
    bool isBoundary = false;
    dvn::Str type;
};

/// Declares a group without a parent: name, boundary flag and "type" property, in this order. Names go as UTF-8.
void addTopLevelGroup(const GroupInfo& group, DDPElementGroupInfo* info);

/// The same with the parent part, which is declared right after the name.
void addGroupOfPart(const GroupInfo& group, int parentPartId, DDPElementGroupInfo* info);
