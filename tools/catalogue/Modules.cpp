#include "tools/catalogue/Modules.h"

#include "decoders/datapath/AWR8P_Layouts.h"
#include "decoders/datapath/IOMGR8P_Layouts.h"
#include "decoders/datapath/MIP8P_Layouts.h"
#include "decoders/datapath/VPI8P_Layouts.h"
#include "decoders/generic/Unhandled_Layouts.h"
#include "decoders/management/NETWORK_CONFIGMP_Layouts.h"
#include "decoders/management/SMIS_Layouts.h"
#include "decoders/management/STARTUPMP_Layouts.h"
#include "decoders/management/SYSTEM_CONFIGMP_Layouts.h"
#include "decoders/protocol/ES_ADAPTERMP_Layouts.h"
#include "decoders/protocol/ISCSIMP_Layouts.h"
#include "decoders/protocol/ISNSC_Layouts.h"
#include "decoders/protocol/SATA8P_Layouts.h"

namespace Pegasus::mpu {

namespace {

constexpr Module kModules[] = {
    iomgr::kModule,
    sata::kModule,
    mip::kModule,
    awr::kModule,
    vpi::kModule,
    unhandled::module(12, "ICHAR_Event"),
    unhandled::module(13, "OB0_Event"),
    unhandled::module(14, "OB1_Event"),
    unhandled::module(15, "HACCMP_Event"),
    unhandled::module(16, "MSMMP_Event"),
    startup::kModule,
    {19, "DDLMMP_Event", "Decoded as module 23 (SCC)."},
    unhandled::module(21, "DRIVEADMP_Event"),
    iscsi::kModule,
    scc::kModule,
    ncs::kModule,
    {25, "AIMMP_Event", "Decoded as module 23 (SCC)."},
    unhandled::module(28, "SNMPMP_Event"),
    smis::kModule,
    {30, "SMI_IND_Event", "Decoded as module 29 (SMIS)."},
    isns::kModule,
    esa::kModule,
};

} // namespace

std::span<const Module> modules() {
    return kModules;
}

} // namespace Pegasus::mpu
