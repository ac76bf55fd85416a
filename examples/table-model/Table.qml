// SPDX-License-Identifier: MIT
// One line for each selector; the names in the delegate are the model's roles.
import QtQuick 2.15

ListView {
    width: 800
    height: 300
    model: selectors
    delegate: Row {
        spacing: 16
        padding: 6
        Text { width: 420; elide: Text.ElideLeft; text: selector }
        TextInput {
            width: 120
            readOnly: !writable
            color: writable ? "navy" : "black"
            text: shown()
            onEditingFinished: {
                if (text !== shown()) {
                    value = text
                }
                text = Qt.binding(shown) // follow the value again, also after a refused one
            }
            function shown() { return value === undefined ? "" : String(value) }
        }
        Text { width: 60; text: unit }
        Text { color: "firebrick"; text: error }
    }
}
