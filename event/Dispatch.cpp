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

// Where the records of a module go.
struct Row {
    DecoderFactory decoder = nullptr;       // null: header fields alone
    mpu::DecodeFunction function = nullptr; // what the decoder's constructor calls
    // The module that it is decoded like, by a registered decoder; `decoder` where that has none.
    unsigned char like = kItself;

    static constexpr unsigned char kItself = 0xFF;
    constexpr bool fixed() const { return decoder && like == kItself; }
};

// By module id, the record's source byte. A row without a decoder of its own takes a registered
// one.
constexpr Row kRows[] = {
    /*  0 iSCSI 1     */ {},
    /*  1 iSCSI 2     */ {make<ISCSI28P_Event>, nullptr, 0},
    /*  2 SCSI        */ {},
    /*  3 Cache 1     */ {},
    /*  4 Cache 2     */ {make<CACHE28P_Event>, nullptr, 3},
    /*  5 I/O Mgr     */ {make<IOMGR8P_Event>, mpu::iomgr::decode},
    /*  6 Dev Mgr     */ {make<SATA8P_Event>, mpu::sata::decode},
    /*  7 MIP         */ {make<MIP8P_Event>, mpu::mip::decode},
    /*  8 PieMan      */ {},
    /*  9 AWR         */ {make<AWR8P_Event>, mpu::awr::decode},
    /* 10 VPI         */ {make<VPI8P_Event>, mpu::vpi::decode},
    /* 11 MIP Local   */ {},
    /* 12 iChar       */ {make<ICHAR_Event>, mpu::ichar::decode},
    /* 13 OB0         */ {make<OB0_Event>, mpu::ob0::decode},
    /* 14 OB1         */ {make<OB1_Event>, mpu::ob1::decode},
    /* 15 HACC        */ {make<HACCMP_Event>, mpu::hacc::decode},
    /* 16 MSM         */ {make<MSMMP_Event>, mpu::msm::decode},
    /* 17 RCP         */ {},
    /* 18 Startup     */ {make<STARTUPMP_Event>, mpu::startup::decode},
    /* 19 DDLM        */ {make<DDLMMP_Event>, mpu::scc::decode},
    /* 20 Vol Mgr     */ {},
    /* 21 Drive Admin */ {make<DRIVEADMP_Event>, mpu::driveAdmin::decode},
    /* 22 ICS         */ {make<ISCSIMP_Event>, mpu::iscsi::decode},
    /* 23 SCC         */ {make<SYSTEM_CONFIGMP_Event>, mpu::scc::decode},
    /* 24 NCS         */ {make<NETWORK_CONFIGMP_Event>, mpu::ncs::decode},
    /* 25 AIM         */ {make<AIMMP_Event>, mpu::scc::decode},
    /* 26 ESM         */ {},
    /* 27 EMP         */ {},
    /* 28 SNMP        */ {make<SNMPMP_Event>, mpu::snmp::decode},
    /* 29 SMIS        */ {make<SMIS_Event>, mpu::smis::decode},
    /* 30 SMIS IND    */ {make<SMI_IND_Event>, mpu::smis::decode},
    /* 31 iSNS        */ {make<ISNSC_Event>, mpu::isns::decode},
    /* 32             */ {},
    /* 33 ESA         */ {make<ES_ADAPTERMP_Event>, mpu::esa::decode},
};

constexpr Row rowOf(unsigned char source) {
    return source < std::size(kRows) ? kRows[source] : Row();
}

constinit std::atomic<DecoderFactory> registered[256]{};

} // namespace

mpu::DecodeFunction mpu::decodeFunctionOf(unsigned char source) {
    return rowOf(source).function;
}

DecoderFactory mpu::decoderOf(unsigned char source) {
    const Row row = rowOf(source);
    if (row.fixed())
        return row.decoder;
    if (const DecoderFactory own = registered[source].load(std::memory_order_acquire))
        return own;
    if (row.like != Row::kItself)
        if (const DecoderFactory like = decoderOf(row.like))
            return like;
    return row.decoder;
}

bool MPUEvent::registerDecoder(unsigned char source, DecoderFactory factory) {
    if (rowOf(source).fixed())
        return false;
    registered[source].store(factory, std::memory_order_release);
    return true;
}

} // namespace Pegasus
