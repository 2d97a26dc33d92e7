// The one place that knows all decoders: a new one is added by a row here.
#include "event/Dispatch.h"

#include "decoders/Decode.h"

#include "decoders/datapath/AWR8P_Event.h"
#include "decoders/datapath/IOMGR8P_Event.h"
#include "decoders/datapath/MIP8P_Event.h"
#include "decoders/datapath/VPI8P_Event.h"
#include "decoders/generic/AIMMP_Event.h"
#include "decoders/generic/CACHE28P_Event.h"
#include "decoders/generic/DDLMMP_Event.h"
#include "decoders/generic/DRIVEADMP_Event.h"
#include "decoders/generic/HACCMP_Event.h"
#include "decoders/generic/ICHAR_Event.h"
#include "decoders/generic/ISCSI28P_Event.h"
#include "decoders/generic/MSMMP_Event.h"
#include "decoders/generic/OB0_Event.h"
#include "decoders/generic/OB1_Event.h"
#include "decoders/generic/SMI_IND_Event.h"
#include "decoders/generic/SNMPMP_Event.h"
#include "decoders/management/NETWORK_CONFIGMP_Event.h"
#include "decoders/management/SMIS_Event.h"
#include "decoders/management/STARTUPMP_Event.h"
#include "decoders/management/SYSTEM_CONFIGMP_Event.h"
#include "decoders/protocol/ES_ADAPTERMP_Event.h"
#include "decoders/protocol/ISCSIMP_Event.h"
#include "decoders/protocol/ISNSC_Event.h"
#include "decoders/protocol/SATA8P_Event.h"

#include <atomic>
#include <iterator>

namespace Pegasus {

namespace {

template <class Decoder>
Avrel_Event* make(const EmpEvLogMsg_s* record, int length) {
    return new Decoder(record, length);
}

constexpr DecoderFactory kPlain = nullptr; // header fields alone

// By module id, the record's source byte.
constexpr DecoderFactory kDecoders[] = {
    /*  0 iSCSI 1     */ kPlain,
    /*  1 iSCSI 2     */ make<ISCSI28P_Event>,
    /*  2 SCSI        */ kPlain,
    /*  3 Cache 1     */ kPlain,
    /*  4 Cache 2     */ make<CACHE28P_Event>,
    /*  5 I/O Mgr     */ make<IOMGR8P_Event>,
    /*  6 Dev Mgr     */ make<SATA8P_Event>,
    /*  7 MIP         */ make<MIP8P_Event>,
    /*  8 PieMan      */ kPlain,
    /*  9 AWR         */ make<AWR8P_Event>,
    /* 10 VPI         */ make<VPI8P_Event>,
    /* 11 MIP Local   */ kPlain,
    /* 12 iChar       */ make<ICHAR_Event>,
    /* 13 OB0         */ make<OB0_Event>,
    /* 14 OB1         */ make<OB1_Event>,
    /* 15 HACC        */ make<HACCMP_Event>,
    /* 16 MSM         */ make<MSMMP_Event>,
    /* 17 RCP         */ kPlain,
    /* 18 Startup     */ make<STARTUPMP_Event>,
    /* 19 DDLM        */ make<DDLMMP_Event>,
    /* 20 Vol Mgr     */ kPlain,
    /* 21 Drive Admin */ make<DRIVEADMP_Event>,
    /* 22 ICS         */ make<ISCSIMP_Event>,
    /* 23 SCC         */ make<SYSTEM_CONFIGMP_Event>,
    /* 24 NCS         */ make<NETWORK_CONFIGMP_Event>,
    /* 25 AIM         */ make<AIMMP_Event>,
    /* 26 ESM         */ kPlain,
    /* 27 EMP         */ kPlain,
    /* 28 SNMP        */ make<SNMPMP_Event>,
    /* 29 SMIS        */ make<SMIS_Event>,
    /* 30 SMIS IND    */ make<SMI_IND_Event>,
    /* 31 iSNS        */ make<ISNSC_Event>,
    /* 32             */ kPlain,
    /* 33 ESA         */ make<ES_ADAPTERMP_Event>,
};

constinit std::atomic<DecoderFactory> registered[256]{};

// By module id.
constexpr mpu::DecodeFunction kFunctions[] = {
    /*  0 */ nullptr,
    /*  1 */ nullptr,
    /*  2 */ nullptr,
    /*  3 */ nullptr,
    /*  4 */ nullptr,
    /*  5 */ mpu::iomgr::decode,
    /*  6 */ mpu::sata::decode,
    /*  7 */ mpu::mip::decode,
    /*  8 */ nullptr,
    /*  9 */ mpu::awr::decode,
    /* 10 */ mpu::vpi::decode,
    /* 11 */ nullptr,
    /* 12 */ mpu::ichar::decode,
    /* 13 */ mpu::ob0::decode,
    /* 14 */ mpu::ob1::decode,
    /* 15 */ mpu::hacc::decode,
    /* 16 */ mpu::msm::decode,
    /* 17 */ nullptr,
    /* 18 */ mpu::startup::decode,
    /* 19 */ mpu::scc::decode,
    /* 20 */ nullptr,
    /* 21 */ mpu::driveAdmin::decode,
    /* 22 */ mpu::iscsi::decode,
    /* 23 */ mpu::scc::decode,
    /* 24 */ mpu::ncs::decode,
    /* 25 */ mpu::scc::decode,
    /* 26 */ nullptr,
    /* 27 */ nullptr,
    /* 28 */ mpu::snmp::decode,
    /* 29 */ mpu::smis::decode,
    /* 30 */ mpu::smis::decode,
    /* 31 */ mpu::isns::decode,
    /* 32 */ nullptr,
    /* 33 */ mpu::esa::decode,
};

} // namespace

mpu::DecodeFunction mpu::decodeFunctionOf(unsigned char source) {
    return source < std::size(kFunctions) ? kFunctions[source] : nullptr;
}

DecoderFactory mpu::decoderOf(unsigned char source) {
    if (source < std::size(kDecoders) && kDecoders[source])
        return kDecoders[source];
    return registered[source].load(std::memory_order_acquire);
}

bool MPUEvent::registerDecoder(unsigned char source, DecoderFactory factory) {
    if (source < std::size(kDecoders) && kDecoders[source])
        return false;
    registered[source].store(factory, std::memory_order_release);
    return true;
}

} // namespace Pegasus
