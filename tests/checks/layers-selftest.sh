#!/usr/bin/env bash
# The check of the layers can fail: it finds each of these faults, planted in a bare tree, and passes
# what is right.
set -euo pipefail
cd "$(dirname "$0")/../.."
check="$PWD/tests/checks/layers.sh"

tree=$(mktemp -d)
trap 'rm -rf "$tree"' EXIT
problems=0

# The folders of the rules, each with its library and nothing else.
bare_tree() {
    rm -rf "${tree:?}"/*
    local folder
    for folder in app ui console advice sequence protocol serial serial/platform timing targetfile board; do
        mkdir -p "$tree/$folder"
        echo "flashwriter_library(planted_${folder##*/})" >"$tree/$folder/CMakeLists.txt"
    done
    mkdir "$tree/sequence/context"
    echo "flashwriter_library(context)" >"$tree/sequence/context/CMakeLists.txt"
}

# plant <file> <text> [pass]: the check must fail and name the file, or pass.
plant() {
    local file=$1 text=$2 wanted=${3:-fail} output status=0
    bare_tree
    mkdir -p "$tree/$(dirname "$file")"
    printf '%s\n' "$text" >"$tree/$file"
    output=$("$check" "$tree" 2>&1) || status=$?
    if [[ $wanted == pass && $status != 0 ]] ||
        [[ $wanted == fail && ($status == 0 || $output != *"FAILED: $file:1:"*) ]]; then
        printf 'FAILED: with "%s" in %s the check should %s; it ended with %s and said\n%s\n' \
            "$text" "$file" "$wanted" "$status" "$output"
        problems=$((problems + 1))
    fi
}

plant sequence/context/Planted.h '#include <vector>' pass
plant sequence/context/Planted.h '#include "sequence/NSSequenceProcessor.h"'
plant timing/Planted.cpp '#include "protocol/NSCommandProcessor.h"'
plant protocol/Planted.cpp '#include "serial/NSSerialPortProcessor.h"'
plant protocol/Planted.cpp '# include <serial/NSSerialPortProcessor.h>'
plant protocol/Planted.cpp '#include "sequence/context/ResultCode.h"' pass
plant serial/Planted.cpp '#include "sequence/NSSequenceProcessor.h"'
plant serial/Planted.cpp '#include "serial/platform/Speed.h"' pass
plant serial/platform/Planted.cpp '#include "targetfile/NSTargetFile.h"'
plant sequence/Planted.cpp '#include "ui/ResultWindowController.h"'
plant sequence/Planted.cpp '#include "console/Planted.h"'
plant sequence/Planted.cpp '#include "tests/unit/Planted.h"'
plant sequence/Planted.cpp '#include "../ui/Planted.h"'
plant sequence/Planted.cpp '#include "targetfile/NSTargetFile.h"' pass
plant console/Planted.cpp '#include "app/AppDelegate.h"'
plant console/Planted.cpp '#include "advice/FailureAdvice.h"' pass
plant advice/Planted.cpp '#include "targetfile/FileFacts.h"' pass
plant advice/Planted.cpp '#include "sequence/MainQueue.h"'
plant advice/Planted.cpp '#include "console/ConsoleOutput.h"'
plant advice/Planted.cpp '#include <QString>'
plant sequence/Planted.cpp '#include "advice/FailureAdvice.h"'
plant ui/Planted.cpp '#include "app/AppDelegate.h"'
plant ui/Planted.cpp '#include "sequence/ProgressWindow.h"' pass
plant ui/Planted.cpp '#include "advice/FailureAdvice.h"' pass
plant app/Planted.cpp '#include "ui/ProgressWindowController.h"' pass
plant app/Planted.cpp '#include "advice/FormAdvice.h"' pass
plant app/Planted.cpp '#include "ui_MainWindow.h"' pass
plant sequence/Planted.cpp '#include "ui_MainWindow.h"'
plant board/Planted.cpp '#include "protocol/NSCommandProcessor.h"'
plant board/lines/Planted.cpp '#include "sequence/context/ResultCode.h"'
plant board/lines/Planted.cpp '#include "board/Planted.h"' pass
plant serial/Planted.cpp '#include "board/Planted.h"'
plant app/Planted.cpp '#include "board/Planted.h"'
plant ui/Planted.cpp '#include <QWidget>' pass
plant sequence/Planted.cpp '#include <QString>'
plant console/Planted.cpp '#include <QtCore/QString>'
plant board/Planted.cpp '#include <QtCore>'
plant serial/Planted.cpp '#ifdef __linux__'
plant serial/Planted.cpp '#include <linux/serial.h>' pass
plant app/Planted.cpp '#if defined(__APPLE__) && 1'
plant ui/Planted.cpp '#ifdef Q_OS_MACOS'
plant board/Planted.cpp '#  if !defined linux'
plant serial/platform/Planted.cpp '#ifdef __APPLE__' pass
plant protocol/CMakeLists.txt 'flashwriter_library(protocol DEPENDS flashwriter::planted_serial)'
plant protocol/CMakeLists.txt 'target_link_libraries(flashwriter_protocol PUBLIC flashwriter_planted_ui)'
plant protocol/CMakeLists.txt 'flashwriter_library(protocol DEPENDS flashwriter::context)' pass
plant protocol/CMakeLists.txt 'flashwriter_library(protocol DEPENDS flashwriter::misspelt)'
plant board/CMakeLists.txt 'flashwriter_library(board DEPENDS flashwriter::context)'
plant serial/CMakeLists.txt 'find_package(Qt6 REQUIRED COMPONENTS Core)'
plant serial/CMakeLists.txt 'target_link_libraries(flashwriter_serial PRIVATE Qt6::Core)'
plant app/CMakeLists.txt 'find_package(Qt6 REQUIRED COMPONENTS Widgets)' pass

if "$check" "$tree/protocol" >/dev/null 2>&1; then
    echo "FAILED: the check passes a tree that has none of the folders"
    problems=$((problems + 1))
fi
((problems == 0))
