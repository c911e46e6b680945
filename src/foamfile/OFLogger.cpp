// SPDX-License-Identifier: MIT
#include "foamfile/OFLogger.h"

#include "LibCore/Limits.h"

#include <algorithm>

namespace {

constexpr int LEVEL_ERROR = 1;
constexpr int LEVEL_INFO = 3;
constexpr int LEVEL_DEBUG = 4;
constexpr int PERCENT_SIGNS = 4;

} // namespace

dvn::Str excerpt(const std::string& text)
{
    const std::size_t most = std::min(text.size(), dvf::limits::LOG_EXCERPT);
    std::size_t end = 0;
    for (int signs = 0; end < most; ++end) {
        signs += text[end] == '%' ? 1 : 0;
        if (signs > PERCENT_SIGNS) {
            break;
        }
    }
    return dvn::Str(text.substr(0, end));
}

OFLogger& OFLogger::get()
{
    static OFLogger instance;
    return instance;
}

void OFLogger::init(Callback callback)
{
    m_callback = callback;
}

bool OFLogger::logError(const dvn::Str& group, const dvn::Str& message) const
{
    send(LEVEL_ERROR, group, message);
    return false;
}

void OFLogger::logInfo(const dvn::Str& group, const dvn::Str& message) const
{
    send(LEVEL_INFO, group, message);
}

void OFLogger::logDebug(const dvn::Str& group, const dvn::Str& message) const
{
    send(LEVEL_DEBUG, group, message);
}

void OFLogger::logDeveloper(const dvn::Str& group, const dvn::Str& message) const
{
    send(LEVEL_DEBUG, group, message);
}

void OFLogger::track(const dvn::Str& /*label*/, double /*value*/) {}

void OFLogger::printTrackedData() const {}

void OFLogger::send(int level, const dvn::Str& group, const dvn::Str& message) const
{
    const Callback callback = m_callback;
    const std::string text = group.toStdString() + " : " + message.toStdString();
    if (callback != nullptr) {
        callback(level, text.c_str());
    }
}
