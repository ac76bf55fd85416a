# SPDX-License-Identifier: MIT
# The commands that need a database: there where the history is built, with their pages.

if(TARGET ProcessDataRecording)
    target_sources(SelectorCli PRIVATE
        commands/DurationOption.cpp
        commands/HistoryCommand.cpp
        commands/HistoryCommands.cpp
        commands/HistoryInfoReport.cpp
        commands/HistoryPlot.cpp
        commands/HistorySelection.cpp
        commands/LookBack.cpp
        commands/LookBackJson.cpp
        commands/LookBackLines.cpp
        commands/RecordCommand.cpp
        commands/RecordReport.cpp)
    target_link_libraries(SelectorCli PRIVATE ProcessDataRecording)
    set(pages_left_out "^$")
else()
    target_sources(SelectorCli PRIVATE commands/NoHistoryCommands.cpp)
    set(pages_left_out "selector-(history|record)\\.1$")
endif()
