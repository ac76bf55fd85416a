// SPDX-License-Identifier: MIT
// One line for each selector; the names in the delegate are the model's roles. Below: what was refused.
import QtQuick 2.15

Column {
    width: 800
    height: 300

    ListView {
        width: parent.width
        height: parent.height - refusal.height
        model: selectors
        delegate: Row {
            spacing: 16
            padding: 6
            Text { width: 420; elide: Text.ElideLeft; text: selector }
            TextInput {
                // Until somebody types it follows its value, and it writes only what was typed.
                property bool typed: false
                property string shown: value === undefined ? "" : String(value)
                function follow() {
                    typed = false
                    text = shown
                }
                width: 120
                readOnly: !writable
                color: writable ? "navy" : "black"
                onTextEdited: typed = true
                onEditingFinished: {
                    if (typed) {
                        value = text
                        follow() // also after a refused one
                    }
                }
                Keys.onEscapePressed: follow()
                onShownChanged: {
                    if (!typed) {
                        follow()
                    }
                }
                Component.onCompleted: follow()
            }
            Text { width: 60; text: unit }
            Text { color: "firebrick"; text: error }
        }
    }
    Text {
        id: refusal
        objectName: "refusal"
        padding: 6
        color: "firebrick"
        Connections {
            target: selectors
            function onValueRefused(selector, text) {
                refusal.text = "\"" + text + "\" was refused, " + selector + " keeps its value"
            }
            function onValueWritten() { refusal.text = "" }
        }
    }
}
