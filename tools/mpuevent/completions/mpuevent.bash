# bash completion for mpuevent
_mpuevent_words() { # those that begin as what is typed, quoted or not
    local word typed=${cur//\\/}
    typed=${typed#[\'\"]}
    for word; do
        [[ ${word,,} == "${typed,,}"* ]] || continue
        [[ $cur == [\'\"]* ]] || printf -v word %q "$word"
        COMPREPLY+=("$word")
    done
}
_mpuevent_list() { # the same after the last comma
    local before=${cur%"${cur##*,}"} cur=${cur##*,}
    _mpuevent_words "$@"
    COMPREPLY=("${COMPREPLY[@]/#/$before}")
    compopt -o nospace 2>/dev/null
}
_mpuevent_files() {
    compopt -o filenames 2>/dev/null
    mapfile -t COMPREPLY < <(compgen -f -- "$cur")
}
_mpuevent() {
    local cur=${COMP_WORDS[COMP_CWORD]} prev=${COMP_WORDS[COMP_CWORD - 1]} command='' word
    COMPREPLY=()
    [[ $prev == '=' ]] && prev=${COMP_WORDS[COMP_CWORD - 2]}
    [[ $cur == '=' ]] && cur=''
    for word in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
        case $word in
        decode | explain | summary | verify | report | follow | formats | sample) command=$word && break ;;
        esac
    done
    case $command/$prev in
    decode/--input) _mpuevent_words auto cmap record hex hex-record; return ;;
    decode/--max-reports) true; return ;;
    decode/--format) _mpuevent_words text brief line json xml csv; return ;;
    decode/--columns) _mpuevent_list enclosureSerialNumber controllerSerialNumber controllerSlotID eventLogInstanceNumber sequenceID timestamp source category eventType eventTypeText eventID summary body layout missingBytes unreadBytes; return ;;
    decode/--source) _mpuevent_words 'iSCSI 1' 'iSCSI 2' SCSI 'Cache 1' 'Cache 2' 'I/O Mgr' 'Dev Mgr' MIP PieMan AWR VPI 'MIP Local' iChar OB0 OB1 HACC MSM RCP Startup DDLM 'Vol Mgr' 'Drive Admin' ICS SCC NCS AIM ESM EMP SNMP SMIS 'SMIS IND' iSNS ESA; return ;;
    decode/--not-source) _mpuevent_words 'iSCSI 1' 'iSCSI 2' SCSI 'Cache 1' 'Cache 2' 'I/O Mgr' 'Dev Mgr' MIP PieMan AWR VPI 'MIP Local' iChar OB0 OB1 HACC MSM RCP Startup DDLM 'Vol Mgr' 'Drive Admin' ICS SCC NCS AIM ESM EMP SNMP SMIS 'SMIS IND' iSNS ESA; return ;;
    decode/--category) _mpuevent_words System Management Environmental Device Volume SCSI iSCSI Network Hardware I/O Cache iSNS Task; return ;;
    decode/--not-category) _mpuevent_words System Management Environmental Device Volume SCSI iSCSI Network Hardware I/O Cache iSNS Task; return ;;
    decode/--severity) _mpuevent_words informational warning error; return ;;
    decode/--not-severity) _mpuevent_words informational warning error; return ;;
    decode/--enclosure) true; return ;;
    decode/--not-enclosure) true; return ;;
    decode/--controller) true; return ;;
    decode/--not-controller) true; return ;;
    decode/--slot) true; return ;;
    decode/--not-slot) true; return ;;
    decode/--log) true; return ;;
    decode/--not-log) true; return ;;
    decode/--id) true; return ;;
    decode/--not-id) true; return ;;
    decode/--since) true; return ;;
    decode/--not-since) true; return ;;
    decode/--until) true; return ;;
    decode/--not-until) true; return ;;
    decode/--event-id) true; return ;;
    decode/--not-event-id) true; return ;;
    decode/--grep) true; return ;;
    decode/--not-grep) true; return ;;
    decode/--where) true; return ;;
    decode/--not-where) true; return ;;
    decode/--limit) true; return ;;
    decode/--context) true; return ;;
    decode/--around) true; return ;;
    decode/--last) true; return ;;
    decode/-o) _mpuevent_files; return ;;
    decode/--output) _mpuevent_files; return ;;
    decode/-j) true; return ;;
    decode/--jobs) true; return ;;
    explain/--input) _mpuevent_words auto cmap record hex hex-record; return ;;
    explain/--max-reports) true; return ;;
    explain/--source) _mpuevent_words 'iSCSI 1' 'iSCSI 2' SCSI 'Cache 1' 'Cache 2' 'I/O Mgr' 'Dev Mgr' MIP PieMan AWR VPI 'MIP Local' iChar OB0 OB1 HACC MSM RCP Startup DDLM 'Vol Mgr' 'Drive Admin' ICS SCC NCS AIM ESM EMP SNMP SMIS 'SMIS IND' iSNS ESA; return ;;
    explain/--not-source) _mpuevent_words 'iSCSI 1' 'iSCSI 2' SCSI 'Cache 1' 'Cache 2' 'I/O Mgr' 'Dev Mgr' MIP PieMan AWR VPI 'MIP Local' iChar OB0 OB1 HACC MSM RCP Startup DDLM 'Vol Mgr' 'Drive Admin' ICS SCC NCS AIM ESM EMP SNMP SMIS 'SMIS IND' iSNS ESA; return ;;
    explain/--category) _mpuevent_words System Management Environmental Device Volume SCSI iSCSI Network Hardware I/O Cache iSNS Task; return ;;
    explain/--not-category) _mpuevent_words System Management Environmental Device Volume SCSI iSCSI Network Hardware I/O Cache iSNS Task; return ;;
    explain/--severity) _mpuevent_words informational warning error; return ;;
    explain/--not-severity) _mpuevent_words informational warning error; return ;;
    explain/--enclosure) true; return ;;
    explain/--not-enclosure) true; return ;;
    explain/--controller) true; return ;;
    explain/--not-controller) true; return ;;
    explain/--slot) true; return ;;
    explain/--not-slot) true; return ;;
    explain/--log) true; return ;;
    explain/--not-log) true; return ;;
    explain/--id) true; return ;;
    explain/--not-id) true; return ;;
    explain/--since) true; return ;;
    explain/--not-since) true; return ;;
    explain/--until) true; return ;;
    explain/--not-until) true; return ;;
    explain/--event-id) true; return ;;
    explain/--not-event-id) true; return ;;
    explain/--grep) true; return ;;
    explain/--not-grep) true; return ;;
    explain/--where) true; return ;;
    explain/--not-where) true; return ;;
    explain/--limit) true; return ;;
    explain/--context) true; return ;;
    explain/--around) true; return ;;
    explain/--last) true; return ;;
    explain/--format) _mpuevent_words text json html; return ;;
    explain/-o) _mpuevent_files; return ;;
    explain/--output) _mpuevent_files; return ;;
    summary/--input) _mpuevent_words auto cmap record hex hex-record; return ;;
    summary/--max-reports) true; return ;;
    summary/--source) _mpuevent_words 'iSCSI 1' 'iSCSI 2' SCSI 'Cache 1' 'Cache 2' 'I/O Mgr' 'Dev Mgr' MIP PieMan AWR VPI 'MIP Local' iChar OB0 OB1 HACC MSM RCP Startup DDLM 'Vol Mgr' 'Drive Admin' ICS SCC NCS AIM ESM EMP SNMP SMIS 'SMIS IND' iSNS ESA; return ;;
    summary/--not-source) _mpuevent_words 'iSCSI 1' 'iSCSI 2' SCSI 'Cache 1' 'Cache 2' 'I/O Mgr' 'Dev Mgr' MIP PieMan AWR VPI 'MIP Local' iChar OB0 OB1 HACC MSM RCP Startup DDLM 'Vol Mgr' 'Drive Admin' ICS SCC NCS AIM ESM EMP SNMP SMIS 'SMIS IND' iSNS ESA; return ;;
    summary/--category) _mpuevent_words System Management Environmental Device Volume SCSI iSCSI Network Hardware I/O Cache iSNS Task; return ;;
    summary/--not-category) _mpuevent_words System Management Environmental Device Volume SCSI iSCSI Network Hardware I/O Cache iSNS Task; return ;;
    summary/--severity) _mpuevent_words informational warning error; return ;;
    summary/--not-severity) _mpuevent_words informational warning error; return ;;
    summary/--enclosure) true; return ;;
    summary/--not-enclosure) true; return ;;
    summary/--controller) true; return ;;
    summary/--not-controller) true; return ;;
    summary/--slot) true; return ;;
    summary/--not-slot) true; return ;;
    summary/--log) true; return ;;
    summary/--not-log) true; return ;;
    summary/--id) true; return ;;
    summary/--not-id) true; return ;;
    summary/--since) true; return ;;
    summary/--not-since) true; return ;;
    summary/--until) true; return ;;
    summary/--not-until) true; return ;;
    summary/--event-id) true; return ;;
    summary/--not-event-id) true; return ;;
    summary/--grep) true; return ;;
    summary/--not-grep) true; return ;;
    summary/--where) true; return ;;
    summary/--not-where) true; return ;;
    summary/--limit) true; return ;;
    summary/--context) true; return ;;
    summary/--around) true; return ;;
    summary/--last) true; return ;;
    summary/--format) _mpuevent_words text json; return ;;
    summary/-o) _mpuevent_files; return ;;
    summary/--output) _mpuevent_files; return ;;
    verify/--input) _mpuevent_words auto cmap record hex hex-record; return ;;
    verify/--format) _mpuevent_words text json; return ;;
    verify/-o) _mpuevent_files; return ;;
    verify/--output) _mpuevent_files; return ;;
    report/--input) _mpuevent_words auto cmap record hex hex-record; return ;;
    report/--max-reports) true; return ;;
    report/--source) _mpuevent_words 'iSCSI 1' 'iSCSI 2' SCSI 'Cache 1' 'Cache 2' 'I/O Mgr' 'Dev Mgr' MIP PieMan AWR VPI 'MIP Local' iChar OB0 OB1 HACC MSM RCP Startup DDLM 'Vol Mgr' 'Drive Admin' ICS SCC NCS AIM ESM EMP SNMP SMIS 'SMIS IND' iSNS ESA; return ;;
    report/--not-source) _mpuevent_words 'iSCSI 1' 'iSCSI 2' SCSI 'Cache 1' 'Cache 2' 'I/O Mgr' 'Dev Mgr' MIP PieMan AWR VPI 'MIP Local' iChar OB0 OB1 HACC MSM RCP Startup DDLM 'Vol Mgr' 'Drive Admin' ICS SCC NCS AIM ESM EMP SNMP SMIS 'SMIS IND' iSNS ESA; return ;;
    report/--category) _mpuevent_words System Management Environmental Device Volume SCSI iSCSI Network Hardware I/O Cache iSNS Task; return ;;
    report/--not-category) _mpuevent_words System Management Environmental Device Volume SCSI iSCSI Network Hardware I/O Cache iSNS Task; return ;;
    report/--severity) _mpuevent_words informational warning error; return ;;
    report/--not-severity) _mpuevent_words informational warning error; return ;;
    report/--enclosure) true; return ;;
    report/--not-enclosure) true; return ;;
    report/--controller) true; return ;;
    report/--not-controller) true; return ;;
    report/--slot) true; return ;;
    report/--not-slot) true; return ;;
    report/--log) true; return ;;
    report/--not-log) true; return ;;
    report/--id) true; return ;;
    report/--not-id) true; return ;;
    report/--since) true; return ;;
    report/--not-since) true; return ;;
    report/--until) true; return ;;
    report/--not-until) true; return ;;
    report/--event-id) true; return ;;
    report/--not-event-id) true; return ;;
    report/--grep) true; return ;;
    report/--not-grep) true; return ;;
    report/--where) true; return ;;
    report/--not-where) true; return ;;
    report/--limit) true; return ;;
    report/--context) true; return ;;
    report/--around) true; return ;;
    report/--last) true; return ;;
    report/-o) _mpuevent_files; return ;;
    report/--output) _mpuevent_files; return ;;
    follow/--input) _mpuevent_words cmap record; return ;;
    follow/-n) true; return ;;
    follow/--last) true; return ;;
    follow/--cursor) _mpuevent_files; return ;;
    follow/--format) _mpuevent_words text brief line json xml csv; return ;;
    follow/--columns) _mpuevent_list enclosureSerialNumber controllerSerialNumber controllerSlotID eventLogInstanceNumber sequenceID timestamp source category eventType eventTypeText eventID summary body layout missingBytes unreadBytes; return ;;
    follow/--source) _mpuevent_words 'iSCSI 1' 'iSCSI 2' SCSI 'Cache 1' 'Cache 2' 'I/O Mgr' 'Dev Mgr' MIP PieMan AWR VPI 'MIP Local' iChar OB0 OB1 HACC MSM RCP Startup DDLM 'Vol Mgr' 'Drive Admin' ICS SCC NCS AIM ESM EMP SNMP SMIS 'SMIS IND' iSNS ESA; return ;;
    follow/--not-source) _mpuevent_words 'iSCSI 1' 'iSCSI 2' SCSI 'Cache 1' 'Cache 2' 'I/O Mgr' 'Dev Mgr' MIP PieMan AWR VPI 'MIP Local' iChar OB0 OB1 HACC MSM RCP Startup DDLM 'Vol Mgr' 'Drive Admin' ICS SCC NCS AIM ESM EMP SNMP SMIS 'SMIS IND' iSNS ESA; return ;;
    follow/--category) _mpuevent_words System Management Environmental Device Volume SCSI iSCSI Network Hardware I/O Cache iSNS Task; return ;;
    follow/--not-category) _mpuevent_words System Management Environmental Device Volume SCSI iSCSI Network Hardware I/O Cache iSNS Task; return ;;
    follow/--severity) _mpuevent_words informational warning error; return ;;
    follow/--not-severity) _mpuevent_words informational warning error; return ;;
    follow/--enclosure) true; return ;;
    follow/--not-enclosure) true; return ;;
    follow/--controller) true; return ;;
    follow/--not-controller) true; return ;;
    follow/--slot) true; return ;;
    follow/--not-slot) true; return ;;
    follow/--log) true; return ;;
    follow/--not-log) true; return ;;
    follow/--id) true; return ;;
    follow/--not-id) true; return ;;
    follow/--since) true; return ;;
    follow/--not-since) true; return ;;
    follow/--until) true; return ;;
    follow/--not-until) true; return ;;
    follow/--event-id) true; return ;;
    follow/--not-event-id) true; return ;;
    follow/--grep) true; return ;;
    follow/--not-grep) true; return ;;
    follow/--where) true; return ;;
    follow/--not-where) true; return ;;
    follow/--limit) true; return ;;
    follow/--context) true; return ;;
    follow/--around) true; return ;;
    formats/--module) _mpuevent_words IOMGR8P_Event SATA8P_Event MIP8P_Event AWR8P_Event VPI8P_Event ICHAR_Event OB0_Event OB1_Event HACCMP_Event MSMMP_Event STARTUPMP_Event DDLMMP_Event DRIVEADMP_Event ISCSIMP_Event SYSTEM_CONFIGMP_Event NETWORK_CONFIGMP_Event AIMMP_Event SNMPMP_Event SMIS_Event SMI_IND_Event ISNSC_Event ES_ADAPTERMP_Event; return ;;
    formats/--code) true; return ;;
    formats/--format) _mpuevent_words text markdown json-schema; return ;;
    sample/--module) _mpuevent_words IOMGR8P_Event SATA8P_Event MIP8P_Event AWR8P_Event VPI8P_Event ICHAR_Event OB0_Event OB1_Event HACCMP_Event MSMMP_Event STARTUPMP_Event DDLMMP_Event DRIVEADMP_Event ISCSIMP_Event SYSTEM_CONFIGMP_Event NETWORK_CONFIGMP_Event AIMMP_Event SNMPMP_Event SMIS_Event SMI_IND_Event ISNSC_Event ES_ADAPTERMP_Event; return ;;
    sample/--count) true; return ;;
    sample/--seed) true; return ;;
    sample/-o) _mpuevent_files; return ;;
    sample/--output) _mpuevent_files; return ;;
    esac
    case $command/$cur in
    /-*) _mpuevent_words -h --help --version ;;
    /*) _mpuevent_words decode explain summary verify report follow formats sample ;;
    decode/-*) _mpuevent_words -h --help --input --max-reports --format --fields --columns --raw --known-only --trace --source --not-source --category --not-category --severity --not-severity --enclosure --not-enclosure --controller --not-controller --slot --not-slot --log --not-log --id --not-id --since --not-since --until --not-until --event-id --not-event-id --grep --not-grep --where --not-where --customer --engineering -i --ignore-case --limit --context --around --last --reverse -o --output -j --jobs ;;
    decode/*) _mpuevent_files ;;
    explain/-*) _mpuevent_words -h --help --input --max-reports --source --not-source --category --not-category --severity --not-severity --enclosure --not-enclosure --controller --not-controller --slot --not-slot --log --not-log --id --not-id --since --not-since --until --not-until --event-id --not-event-id --grep --not-grep --where --not-where --customer --engineering -i --ignore-case --limit --context --around --last --reverse --format -o --output ;;
    explain/*) _mpuevent_files ;;
    summary/-*) _mpuevent_words -h --help --input --max-reports --source --not-source --category --not-category --severity --not-severity --enclosure --not-enclosure --controller --not-controller --slot --not-slot --log --not-log --id --not-id --since --not-since --until --not-until --event-id --not-event-id --grep --not-grep --where --not-where --customer --engineering -i --ignore-case --limit --context --around --last --reverse --format -o --output ;;
    summary/*) _mpuevent_files ;;
    verify/-*) _mpuevent_words -h --help --input --format -o --output ;;
    verify/*) _mpuevent_files ;;
    report/-*) _mpuevent_words -h --help --input --max-reports --source --not-source --category --not-category --severity --not-severity --enclosure --not-enclosure --controller --not-controller --slot --not-slot --log --not-log --id --not-id --since --not-since --until --not-until --event-id --not-event-id --grep --not-grep --where --not-where --customer --engineering -i --ignore-case --limit --context --around --last --reverse -o --output ;;
    report/*) _mpuevent_files ;;
    follow/-*) _mpuevent_words -h --help --input -n --last --cursor --format --fields --columns --raw --known-only --trace --source --not-source --category --not-category --severity --not-severity --enclosure --not-enclosure --controller --not-controller --slot --not-slot --log --not-log --id --not-id --since --not-since --until --not-until --event-id --not-event-id --grep --not-grep --where --not-where --customer --engineering -i --ignore-case --limit --context --around ;;
    follow/*) _mpuevent_files ;;
    formats/-*) _mpuevent_words -h --help --module --code --format ;;
    formats/*) true ;;
    sample/-*) _mpuevent_words -h --help --module --count --seed -o --output ;;
    sample/*) true ;;
    esac
}
complete -F _mpuevent mpuevent
