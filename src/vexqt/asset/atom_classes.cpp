#include "vexqt/asset/atom_classes.h"

#include "vexqt/atoms/headers/VexQTavcCAtom.h"
#include "vexqt/atoms/headers/VexQTclapAtom.h"
#include "vexqt/atoms/headers/VexQTclefAtom.h"
#include "vexqt/atoms/headers/VexQTcolrAtom.h"
#include "vexqt/atoms/headers/VexQTcrgnAtom.h"
#include "vexqt/atoms/headers/VexQTcslgAtom.h"
#include "vexqt/atoms/headers/VexQTelngAtom.h"
#include "vexqt/atoms/headers/VexQTendaAtom.h"
#include "vexqt/atoms/headers/VexQTenofAtom.h"
#include "vexqt/atoms/headers/VexQTfielAtom.h"
#include "vexqt/atoms/headers/VexQTfrmaAtom.h"
#include "vexqt/atoms/headers/VexQTgminAtom.h"
#include "vexqt/atoms/headers/VexQThdlrAtom.h"
#include "vexqt/atoms/headers/VexQTmdhdAtom.h"
#include "vexqt/atoms/headers/VexQTmvhdAtom.h"
#include "vexqt/atoms/headers/VexQTpaspAtom.h"
#include "vexqt/atoms/headers/VexQTprofAtom.h"
#include "vexqt/atoms/headers/VexQTschmAtom.h"
#include "vexqt/atoms/headers/VexQTsmhdAtom.h"
#include "vexqt/atoms/headers/VexQTtcmiAtom.h"
#include "vexqt/atoms/headers/VexQTtextAtom.h"
#include "vexqt/atoms/headers/VexQTtkhdAtom.h"
#include "vexqt/atoms/headers/VexQTtmcdAtom.h"
#include "vexqt/atoms/headers/VexQTvmhdAtom.h"
#include "vexqt/atoms/metadata/VexQTMetadataItem.h"
#include "vexqt/atoms/metadata/VexQTUserDataDirectTextItem.h"
#include "vexqt/atoms/metadata/VexQTUserDataTextItem.h"
#include "vexqt/atoms/metadata/VexQTdataAtom.h"
#include "vexqt/atoms/metadata/VexQTilstAtom.h"
#include "vexqt/atoms/metadata/VexQTkeysAtom.h"
#include "vexqt/atoms/metadata/VexQTmetaAtom.h"
#include "vexqt/atoms/metadata/VexQTudtaAtom.h"
#include "vexqt/atoms/sampledescriptions/VexQTSampleDescription.h"
#include "vexqt/atoms/sampledescriptions/VexQTchanAtom.h"
#include "vexqt/atoms/sampledescriptions/VexQTclcpSampleDescription.h"
#include "vexqt/atoms/sampledescriptions/VexQTftabAtom.h"
#include "vexqt/atoms/sampledescriptions/VexQTmebxkeysAtom.h"
#include "vexqt/atoms/sampledescriptions/VexQTmetaSampleDescription.h"
#include "vexqt/atoms/sampledescriptions/VexQTsbtlSampleDescription.h"
#include "vexqt/atoms/sampledescriptions/VexQTsounSampleDescription.h"
#include "vexqt/atoms/sampledescriptions/VexQTstsdAtom.h"
#include "vexqt/atoms/sampledescriptions/VexQTtmcdSampleDescription.h"
#include "vexqt/atoms/sampledescriptions/VexQTtx3gAtom.h"
#include "vexqt/atoms/sampledescriptions/VexQTvideSampleDescription.h"
#include "vexqt/atoms/sampletables/VexQTco64Atom.h"
#include "vexqt/atoms/sampletables/VexQTcttsAtom.h"
#include "vexqt/atoms/sampletables/VexQTdrefAtom.h"
#include "vexqt/atoms/sampletables/VexQTelstAtom.h"
#include "vexqt/atoms/sampletables/VexQTstcoAtom.h"
#include "vexqt/atoms/sampletables/VexQTstpsAtom.h"
#include "vexqt/atoms/sampletables/VexQTstscAtom.h"
#include "vexqt/atoms/sampletables/VexQTstssAtom.h"
#include "vexqt/atoms/sampletables/VexQTstszAtom.h"
#include "vexqt/atoms/sampletables/VexQTsttsAtom.h"
#include "vexqt/atoms/structure/VexQTclipAtom.h"
#include "vexqt/atoms/structure/VexQTdinfAtom.h"
#include "vexqt/atoms/structure/VexQTedtsAtom.h"
#include "vexqt/atoms/structure/VexQTfreeAtom.h"
#include "vexqt/atoms/structure/VexQTftypAtom.h"
#include "vexqt/atoms/structure/VexQTgmhdAtom.h"
#include "vexqt/atoms/structure/VexQTmdatAtom.h"
#include "vexqt/atoms/structure/VexQTmdiaAtom.h"
#include "vexqt/atoms/structure/VexQTminfAtom.h"
#include "vexqt/atoms/structure/VexQTmoofAtom.h"
#include "vexqt/atoms/structure/VexQTmoovAtom.h"
#include "vexqt/atoms/structure/VexQTschiAtom.h"
#include "vexqt/atoms/structure/VexQTsinfAtom.h"
#include "vexqt/atoms/structure/VexQTstblAtom.h"
#include "vexqt/atoms/structure/VexQTtaptAtom.h"
#include "vexqt/atoms/structure/VexQTtrakAtom.h"
#include "vexqt/atoms/structure/VexQTwaveAtom.h"
#include "vexqt/core/VexQTAtom.h"

namespace vexqt {

std::span<const AtomClass* const> atomClasses() {
    static constexpr const AtomClass* kClasses[] = {
        &VexQTAtom::kClass,
        &VexQTChannelDescription::kClass,
        &VexQTDataReference::kClass,
        &VexQTFontTableEntry::kClass,
        &VexQTMetadataItem::kClass,
        &VexQTSampleDescription::kClass,
        &VexQTUserDataDirectTextItem::kClass,
        &VexQTUserDataTextItem::kClass,
        &VexQTavcCAtom::kClass,
        &VexQTchanAtom::kClass,
        &VexQTclapAtom::kClass,
        &VexQTclcpSampleDescription::kClass,
        &VexQTclefAtom::kClass,
        &VexQTclipAtom::kClass,
        &VexQTco64Atom::kClass,
        &VexQTcolrAtom::kClass,
        &VexQTcrgnAtom::kClass,
        &VexQTcslgAtom::kClass,
        &VexQTcttsAtom::kClass,
        &VexQTdataAtom::kClass,
        &VexQTdinfAtom::kClass,
        &VexQTdrefAtom::kClass,
        &VexQTedtsAtom::kClass,
        &VexQTelngAtom::kClass,
        &VexQTelstAtom::kClass,
        &VexQTendaAtom::kClass,
        &VexQTenofAtom::kClass,
        &VexQTfielAtom::kClass,
        &VexQTfreeAtom::kClass,
        &VexQTfrmaAtom::kClass,
        &VexQTftabAtom::kClass,
        &VexQTftypAtom::kClass,
        &VexQTgmhdAtom::kClass,
        &VexQTgminAtom::kClass,
        &VexQThdlrAtom::kClass,
        &VexQTilstAtom::kClass,
        &VexQTkeysAtom::kClass,
        &VexQTmdatAtom::kClass,
        &VexQTmdhdAtom::kClass,
        &VexQTmdiaAtom::kClass,
        &VexQTmebxkeysAtom::kClass,
        &VexQTmetaAtom::kClass,
        &VexQTmetaSampleDescription::kClass,
        &VexQTminfAtom::kClass,
        &VexQTmoofAtom::kClass,
        &VexQTmoovAtom::kClass,
        &VexQTmvhdAtom::kClass,
        &VexQTpaspAtom::kClass,
        &VexQTprofAtom::kClass,
        &VexQTsbtlSampleDescription::kClass,
        &VexQTschiAtom::kClass,
        &VexQTschmAtom::kClass,
        &VexQTsinfAtom::kClass,
        &VexQTsmhdAtom::kClass,
        &VexQTsounSampleDescription::kClass,
        &VexQTstblAtom::kClass,
        &VexQTstcoAtom::kClass,
        &VexQTstpsAtom::kClass,
        &VexQTstscAtom::kClass,
        &VexQTstsdAtom::kClass,
        &VexQTstssAtom::kClass,
        &VexQTstszAtom::kClass,
        &VexQTsttsAtom::kClass,
        &VexQTtaptAtom::kClass,
        &VexQTtcmiAtom::kClass,
        &VexQTtextAtom::kClass,
        &VexQTtkhdAtom::kClass,
        &VexQTtmcdAtom::kClass,
        &VexQTtmcdSampleDescription::kClass,
        &VexQTtrakAtom::kClass,
        &VexQTtx3gAtom::kClass,
        &VexQTudtaAtom::kClass,
        &VexQTvideSampleDescription::kClass,
        &VexQTvmhdAtom::kClass,
        &VexQTwaveAtom::kClass,
    };
    return kClasses;
}

}  // namespace vexqt
