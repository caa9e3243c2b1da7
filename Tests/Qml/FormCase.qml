import QtQuick

/// Opens the content of a sheet by itself, presses its buttons, and records the signals to its owner.
ProjectCase {
    id: test

    property Item form
    property var happened: []

    width: 400
    height: 400

    function open(component, properties) {
        form = createTemporaryObject(component, test, Object.assign({ projectViewModel: model }, properties));
        happened = [];
        form.dismiss.connect(() => happened.push("dismiss"));
        form.selectedNodeForSheetChanged?.connect(() => happened.push(form.selectedNodeForSheet));
        form.selectedElementForSheetChanged?.connect(() => happened.push(form.selectedElementForSheet));
    }

    function click(name) {
        mouseClick(findChild(form, name));
    }

    /// Types over the texts of the fields, from the first one on.
    function type(...fields) {
        form.firstField.forceActiveFocus(Qt.TabFocusReason);
        for (const text of fields) {
            keyClick(Qt.Key_Delete);
            for (const character of text)
                keyClick(character);
            keyClick(Qt.Key_Tab);
        }
    }

    /// Clicks and returns what was printed then.
    function printedBy(name) {
        return printed(() => click(name));
    }

    /// The texts that an item shows, in the order of its rows.
    function texts(item) {
        if (!item.visible)
            return [];
        if (item.text !== undefined)
            return [item.text];
        let all = [];
        for (let i = 0; i < item.children.length; ++i)
            all = all.concat(texts(item.children[i]));
        return all;
    }
}
