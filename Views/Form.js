.pragma library

/// The numbers in the fields, or null if one is not a number; the first such field then gets the focus.
function numbers(fields) {
    const values = fields.map(field => field.check());
    const wrong = values.indexOf(undefined);
    if (wrong < 0)
        return values;
    fields[wrong].forceActiveFocus();
    fields[wrong].selectAll();
    return null;
}

/// Calls add(start, end) for each node and its successor.
function forEachPair(nodeIDs, add) {
    for (let i = 1; i < nodeIDs.length; ++i)
        add(nodeIDs[i - 1], nodeIDs[i]);
}

function joinedString(integers) {
    return integers.join(", ");
}
