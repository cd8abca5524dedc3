/** Makes an element; properties are set on it, those with a dash or named role as attributes. */
export function element(tag, properties = {}, ...children) {
    const made = document.createElement(tag);
    for (const [name, value] of Object.entries(properties)) {
        if (name.includes('-') || name === 'role') {
            made.setAttribute(name, value);
        } else {
            made[name] = value;
        }
    }
    made.append(...children);
    return made;
}

export const byId = (id) => document.getElementById(id);

/** Changes a text only if it differs: what stays is not laid out, selected or announced anew. */
export function setText(node, text) {
    if (node.textContent !== text) {
        node.textContent = text;
    }
}

/** Adds rows to the end or takes them away there, until there are so many. */
export function resizeRows(body, count, makeRow) {
    while (body.children.length < count) {
        body.append(makeRow());
    }
    while (body.children.length > count) {
        body.lastElementChild.remove();
    }
}

/** Says what an action led to, to the eye and to a screen reader. */
export function announce(text) {
    const notice = byId('notice');
    setText(notice, text);
    clearTimeout(announce.timer);
    announce.timer = setTimeout(() => setText(notice, ''), 5000);
}
