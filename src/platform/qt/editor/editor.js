// The view's half of the editing protocol (docs/editor-protocol.md). It runs in a world of its own:
// the page's scripts are off and could not reach it anyway.
//
// Every node that the program knows has a number here. The nodes that the program made keep the
// program's numbers, which are above 0; nodes that arise here get numbers below 0.
'use strict';

const pw = (function () {
  // The number of a node is its property pwId; pwLive is true while the program has it in its tree,
  // as far as we know. They are properties, which no page can see from its own world, because weak
  // maps of so many nodes cost more than building the page does.
  const nodeOf = new Map();
  const trueNames = new Map();  // stand-in tag -> tag that the DOM calls refuse
  let nextId = -1;
  let sequence = 0;  // of the last batch sent
  let seen = 0;      // the last message applied
  let keysSeen = 0;

  const ELEMENT = 1, TEXT = 3, COMMENT = 8, DOCTYPE = 10;
  const SVG = 'http://www.w3.org/2000/svg', MATHML = 'http://www.w3.org/1998/Math/MathML';
  const XLINK = 'http://www.w3.org/1999/xlink';

  // --- The wire -------------------------------------------------------------------------------

  // The web channel's own client library starts with a round trip to learn names that both sides
  // know already, so its invocation message is written by hand.
  let callNumber = 0;
  function call(method, ...args) {
    qt.webChannelTransport.send(JSON.stringify(
        {type: 6, object: 'editor', method, args, id: ++callNumber}));
  }

  // Timers belong to the page's scripts and are dead with them. Messages are not: this runs a task
  // when the present event is done, what the engine does about it included.
  const tasks = new MessageChannel();
  let queue = [];
  tasks.port1.onmessage = () => {
    const due = queue;
    queue = [];
    for (const task of due) task();
  };
  function later(task) {
    queue.push(task);
    if (queue.length === 1) tasks.port2.postMessage(0);
  }

  // A lone surrogate, which the user can make by deleting half a character, has no UTF-8.
  function wellFormed(text) {
    return /[\ud800-\udfff]/.test(text)
        ? text.replace(/[\ud800-\udbff](?![\udc00-\udfff])|(?<![\ud800-\udbff])[\udc00-\udfff]/g,
                       '\ufffd')
        : text;
  }

  // --- Records: a node written out ---------------------------------------------------------------

  function give(node, id) {
    node.pwId = id;
    nodeOf.set(id, node);
  }

  function idFor(node) {
    let id = node.pwId;
    if (id === undefined) give(node, id = nextId--);
    else nodeOf.set(id, node);
    return id;
  }

  const hidden = new WeakSet();  // nodes of ours in the page's tree: no part of the page
  function childrenOf(node) {
    const list = [];
    for (let child = node.firstChild; child; child = child.nextSibling)
      if (child.nodeType !== DOCTYPE && !hidden.has(child)) list.push(child);
    return list;
  }

  // `written` collects what the record holds in full. Nodes that the program has already stand in it
  // as numbers alone, unless everything is asked for.
  function record(node, written, everything) {
    const id = idFor(node);
    node.pwLive = true;
    if (written) written.add(node);
    if (node.nodeType === ELEMENT) {
      const attributes = [];
      for (const a of node.attributes) attributes.push(a.name, wellFormed(a.value));
      const foreign = node.namespaceURI === SVG || node.namespaceURI === MATHML ? 1 : 0;
      const name = trueNames.get(node.localName) || node.localName;
      const children = childrenOf(node).map(
          child => !everything && child.pwLive ? child.pwId
                                                  : record(child, written, everything));
      return [id, ELEMENT, name, attributes, children, foreign];
    }
    if (node.nodeType === TEXT || node.nodeType === 4) return [id, TEXT, wellFormed(node.data)];
    return [id, COMMENT, wellFormed(node.data || '')];
  }

  function createElement(name, parentNamespace) {
    try {
      return parentNamespace ? document.createElementNS(parentNamespace, name)
                             : document.createElement(name);
    } catch (refused) {
      const standIn = 'pw-name-' + trueNames.size;
      trueNames.set(standIn, name);
      return document.createElement(standIn);
    }
  }

  function setAttribute(element, name, value) {
    // The element keeps it in the page; here it would pull the focus out of the text.
    if (name === 'autofocus') return;
    try {
      if (element.namespaceURI === SVG && name.startsWith('xlink:'))
        element.setAttributeNS(XLINK, name, value);
      else element.setAttribute(name, value);
    } catch (refused) {
      // A name that only the parser takes stays in the program's tree.
    }
  }

  function namespaceFor(name, foreign, parent) {
    if (!foreign) return null;
    if (name === 'svg') return SVG;
    if (name === 'math') return MATHML;
    return parent && parent.namespaceURI === MATHML ? MATHML : SVG;
  }

  // Makes the node of a record, or brings the one that has its number up to date.
  function build(rec, parent) {
    const [id, type] = rec;
    let node = nodeOf.get(id);
    if (type !== ELEMENT) {
      if (!node) node = type === TEXT ? document.createTextNode(rec[2])
                                      : document.createComment(rec[2]);
      else if (node.data !== rec[2]) node.data = rec[2];
    } else {
      const attributes = rec[3];
      if (!node) {
        node = createElement(rec[2], namespaceFor(rec[2], rec[5], parent));
      } else {
        const wanted = new Set();
        for (let i = 0; i < attributes.length; i += 2) wanted.add(attributes[i].toLowerCase());
        for (const name of node.getAttributeNames())
          if (!wanted.has(name.toLowerCase())) node.removeAttribute(name);
      }
      for (let i = 0; i < attributes.length; i += 2)
        if (node.getAttribute(attributes[i]) !== attributes[i + 1])
          setAttribute(node, attributes[i], attributes[i + 1]);
      arrange(node, rec[4]);
    }
    give(node, id);
    node.pwLive = true;
    return node;
  }

  // Gives a parent these children, each a number or a record.
  function arrange(parent, entries) {
    if (!parent.firstChild) {
      for (const entry of entries) parent.appendChild(nodeFor(entry, parent));
      return;
    }
    const wanted = entries.map(entry => nodeFor(entry, parent));
    const keep = new Set(wanted);
    for (const child of childrenOf(parent)) if (!keep.has(child)) child.remove();
    let place = parent.firstChild;
    for (const node of wanted) {
      while (place && place.nodeType === DOCTYPE) place = place.nextSibling;
      if (place === node) place = place.nextSibling;
      else parent.insertBefore(node, place);
    }
  }

  function nodeFor(entry, parent) {
    if (Array.isArray(entry)) return build(entry, parent);
    const node = nodeOf.get(entry);
    if (!node) throw new UnknownNode(entry);
    return node;
  }

  class UnknownNode extends Error {}

  // --- Changes made here --------------------------------------------------------------------------

  const observer = new MutationObserver(collect);
  let parents = new Set(), removed = new Set(), attributes = new Map(), texts = new Map();

  function observe() {
    observer.observe(document, {subtree: true, childList: true, attributes: true,
                                characterData: true, characterDataOldValue: true});
  }

  function note(records) {
    for (const m of records) {
      if (m.type === 'childList') {
        parents.add(m.target);
        for (const node of m.removedNodes) removed.add(node);
      } else if (m.type === 'characterData') {
        if (!texts.has(m.target)) texts.set(m.target, m.oldValue);
      } else {
        let names = attributes.get(m.target);
        if (!names) attributes.set(m.target, names = new Set());
        names.add(m.attributeName);
      }
    }
  }

  let flushDue = false;
  function flushLater() {
    if (flushDue) return;
    flushDue = true;
    later(() => { flushDue = false; flush(); });
  }

  // What comes from a key press is sent by its input event, the rest a task later.
  function collect(records) {
    note(records);
    flushLater();
  }

  function forget(node) {
    node.pwLive = false;
    const id = node.pwId;
    if (id !== undefined) nodeOf.delete(id);
    for (let child = node.firstChild; child; child = child.nextSibling) forget(child);
  }

  function depth(node) {
    let levels = 0;
    for (let n = node.parentNode; n; n = n.parentNode) levels++;
    return levels;
  }

  // The stretch in which two texts differ: [units before it, units in the old text, units behind it,
  // the new text].
  function difference(before, after) {
    let start = 0, end = 0;
    const most = Math.min(before.length, after.length);
    while (start < most && before.charCodeAt(start) === after.charCodeAt(start)) start++;
    while (end < most - start &&
           before.charCodeAt(before.length - 1 - end) === after.charCodeAt(after.length - 1 - end))
      end++;
    // Never between the halves of a character.
    const half = (text, at) => (text.charCodeAt(at) & 0xfc00) === 0xdc00;
    while (start > 0 && (half(before, start) || half(after, start))) start--;
    while (end > 0 && (half(before, before.length - end) || half(after, after.length - end))) end--;
    return [start, before.length - start - end, end,
            wellFormed(after.slice(start, after.length - end))];
  }

  let kind = 'c';  // of what was changed: typing, deleting, or a new paragraph; else a command
  const KINDS = [[/^(insertText|insertCompositionText|insertReplacementText)$/, 't'],
                 [/^insert(Paragraph|LineBreak)$/, 'p'], [/^delete/, 'd']];

  // Takes what was changed into a batch; none when nothing was.
  function takeBatch() {
    note(observer.takeRecords());
    if (!parents.size && !attributes.size && !texts.size) return null;
    for (const node of removed) if (!node.isConnected) forget(node);
    const batch = {n: sequence + 1, seen, kind, k: [], a: [], t: []};
    const lists = [];
    for (const parent of parents)
      if (parent.isConnected && parent.pwLive) lists.push([depth(parent), parent]);
    lists.sort((x, y) => x[0] - y[0]);
    // A parent may turn out to be part of a record written for one above it.
    const written = new Set();
    const entry = node => node.pwLive ? node.pwId : record(node, written, false);
    for (const [, parent] of lists)
      if (!written.has(parent)) batch.k.push([parent.pwId, childrenOf(parent).map(entry)]);
    const reported = node => node.isConnected && node.pwLive && !written.has(node);
    for (const [node, names] of attributes) {
      if (!reported(node)) continue;
      for (const name of names) {
        const value = node.getAttribute(name);
        batch.a.push([node.pwId, name, value === null ? null : wellFormed(value)]);
      }
    }
    for (const [node, before] of texts) {
      if (!reported(node) || node.data === before) continue;
      batch.t.push([node.pwId, ...difference(before, node.data)]);
    }
    parents = new Set();
    removed = new Set();
    attributes = new Map();
    texts = new Map();
    if (!batch.k.length && !batch.a.length && !batch.t.length) return null;
    sequence++;
    return batch;
  }

  let lastSelection = '';
  function flush(newKind) {
    if (newKind) kind = newKind;
    const batch = takeBatch();
    kind = 'c';
    const selected = selection();
    const text = JSON.stringify(selected);
    if (!batch && text === lastSelection) return;
    lastSelection = text;
    call('batch', JSON.stringify(Object.assign(batch || {}, {sel: selected})));
    if (batch) for (const listener of pwListeners.changed) listener();
    stateStale = true;
  }

  // The whole tree, for a program that has lost track.
  function sendAll() {
    takeBatch();
    const tree = childrenOf(document).map(node => record(node, null, true));
    call('batch', JSON.stringify({n: ++sequence, seen, kind: 'c', full: tree, sel: selection()}));
  }

  // Runs something that leaves the page as it was, without a word about it.
  function unobserved(task) {
    flush();
    observer.disconnect();
    try {
      task();
    } finally {
      observe();
    }
  }

  // --- Changes made by the program ------------------------------------------------------------------

  function apply(message) {
    flush();
    // Something was changed here that the program had not seen. It merges that and sends again.
    if (message.n !== sequence) return;
    observer.disconnect();
    let lost = false;
    try {
      if (message.full) {
        const [left, top] = [scrollX, scrollY];
        replaceAll(message);
        scrollTo(left, top);
      } else applyLists(message);
    } catch (error) {
      // Whatever it is, the program's tree is the one that counts.
      lost = true;
      if (!(error instanceof UnknownNode)) console.warn(String(error && error.stack || error));
    }
    observe();
    seen = message.m;
    if (lost) {
      call('lost', seen);
      return;
    }
    call('applied', seen);
    if (message.sel && select(message.sel)) lastSelection = JSON.stringify(selection());
    else flush();
    for (const listener of pwListeners.changed) listener();
    stateStale = true;
  }

  function applyLists(message) {
    const lists = (message.k || []).map(([id, entries]) => [nodeFor(id), entries]);
    // First everything that goes or moves is taken out, so that no node is put below itself.
    for (const [parent, entries] of lists) {
      const keep = new Set();
      for (const entry of entries) {
        const id = Array.isArray(entry) ? entry[0] : entry;
        if (nodeOf.has(id)) keep.add(nodeOf.get(id));
      }
      for (const child of childrenOf(parent)) if (!keep.has(child)) child.remove();
    }
    for (const [parent, entries] of lists) arrange(parent, entries);
    for (const [id, name, value] of message.a || []) {
      const element = nodeFor(id);
      if (value === null) element.removeAttribute(name);
      else setAttribute(element, name, value);
    }
    for (const [id, text] of message.t || []) {
      const node = nodeFor(id);
      const [offset, length, , inserted] = difference(node.data, text);
      if (length || inserted) node.replaceData(offset, length, inserted);
    }
  }

  function replaceAll(message) {
    nodeOf.clear();
    control = null;
    for (const child of [...document.childNodes])
      if (child.nodeType !== DOCTYPE) child.remove();
    for (const rec of message.full) document.appendChild(build(rec, null));
    give(document, message.root);
    document.pwLive = true;
    for (const listener of pwListeners.shown) listener();
  }

  // The first tree of a fresh view.
  function load(message) {
    sequence = message.n;
    observer.disconnect();
    // Before there is anything to be laid out twice.
    document.designMode = 'on';
    document.execCommand('styleWithCSS', false, 'false');
    document.execCommand('defaultParagraphSeparator', false, 'p');
    replaceAll(message);
    observer.takeRecords();
    parents.clear(); removed.clear(); attributes.clear(); texts.clear();
    observe();
    seen = message.m;
    const isAsSent = !message.sel || select(message.sel);
    // To ask the engine for a selection is to have the page laid out, and here there is none.
    const isBlank = !message.sel || message.sel[0] === 0;
    lastSelection = JSON.stringify(isBlank ? [0] : selection());
    reportState(!isBlank);
    call('applied', seen);
    if (!isAsSent) {
      lastSelection = '';
      flush();
    }
  }

  // --- Selection --------------------------------------------------------------------------------

  let control = null;  // the object selected as a whole

  function place(node, offset) {
    while (node && !node.pwLive) {
      if (!node.parentNode) return null;
      offset = [...node.parentNode.childNodes].indexOf(node);
      node = node.parentNode;
    }
    if (!node || !node.isConnected) return null;
    if (node.nodeType !== ELEMENT && node.nodeType !== 9) return [node.pwId, offset];
    let index = 0;
    for (let child = node.firstChild, i = 0; child && i < offset; child = child.nextSibling, i++)
      if (child.nodeType !== DOCTYPE && !hidden.has(child)) index++;
    return [node.pwId, index];
  }

  // [0] none · [1, node, offset, node, offset] text, anchor and focus · [2, node] an object
  function selection() {
    if (control && control.isConnected && control.pwLive) return [2, control.pwId];
    const s = getSelection();
    if (!s.rangeCount || !s.anchorNode || !s.focusNode) return [0];
    const anchor = place(s.anchorNode, s.anchorOffset);
    const focus = place(s.focusNode, s.focusOffset);
    return anchor && focus ? [1, ...anchor, ...focus] : [0];
  }

  function pointOf(id, offset) {
    const node = nodeOf.get(id);
    if (!node || !node.isConnected) return null;
    if (node.nodeType === ELEMENT || node.nodeType === 9) {
      const list = childrenOf(node);
      if (offset >= list.length) return [node, node.childNodes.length];
      return [node, [...node.childNodes].indexOf(list[offset])];
    }
    return [node, Math.min(offset, node.data.length)];
  }

  // The engine types into the focused element alone, and gives the focus along with a caret only
  // while its window is active. A page that comes up behind another window would take no key.
  function focusPage() {
    if (document.body instanceof HTMLBodyElement) document.body.focus({preventScroll: true});
  }

  // False when it became another one, which the program has yet to be told.
  function select(wanted) {
    control = null;
    let isAsSent = true;
    const s = getSelection();
    if (wanted[0] === 2) {
      const node = nodeOf.get(wanted[1]);
      if (node && node.isConnected) selectObject(node);
    } else if (wanted[0] === 1) {
      const anchor = pointOf(wanted[1], wanted[2]), focus = pointOf(wanted[3], wanted[4]);
      if (anchor && focus) {
        s.setBaseAndExtent(...anchor, ...focus);
        isAsSent = !api.units.leave();
        focusPage();
      }
    } else {
      s.removeAllRanges();
    }
    for (const listener of pwListeners.selected) listener();
    return isAsSent;
  }

  function selectObject(node) {
    const parent = node.parentNode;
    if (!parent) return;
    const index = [...parent.childNodes].indexOf(node);
    getSelection().setBaseAndExtent(parent, index, parent, index + 1);
    focusPage();
    control = node;
    for (const listener of pwListeners.selected) listener();
  }

  // True while the text selection still is the one that selectObject has made.
  function controlHolds() {
    const s = getSelection();
    if (!control || !control.isConnected || !s.rangeCount) return false;
    const range = s.getRangeAt(0);
    return range.startContainer === control.parentNode &&
           range.startContainer === range.endContainer &&
           range.startContainer.childNodes[range.startOffset] === control &&
           range.endOffset === range.startOffset + 1;
  }

  document.addEventListener('selectionchange', () => {
    if (control && !controlHolds()) {
      control = null;
      for (const listener of pwListeners.selected) listener();
    }
    flushLater();
  });

  // --- States of the formatting commands ---------------------------------------------------------

  const TOGGLES = ['bold', 'italic', 'underline', 'strikeThrough', 'subscript', 'superscript',
                   'justifyLeft', 'justifyCenter', 'justifyRight', 'justifyFull',
                   'insertOrderedList', 'insertUnorderedList'];
  const ACTIONS = ['indent', 'outdent', 'createLink', 'unlink', 'removeFormat', 'foreColor',
                   'backColor', 'fontName', 'fontSize', 'formatBlock', 'insertHTML'];
  const VALUES = ['fontName', 'fontSize', 'formatBlock', 'foreColor', 'backColor'];

  // The program asks for them when the hand rests: this costs more than a key press may.
  let stateStale = true, lastState = '';
  function reportState(any = getSelection().rangeCount > 0) {
    if (!stateStale) return;
    stateStale = false;
    const states = {}, values = {};
    for (const name of TOGGLES)
      states[name] = !any ? 1 : document.queryCommandState(name) ? 7 : 3;
    for (const name of ACTIONS)
      states[name] = any && document.queryCommandEnabled(name) ? 3 : 1;
    for (const name of VALUES) values[name] = any ? document.queryCommandValue(name) || '' : '';
    const text = JSON.stringify({states, values});
    if (text === lastState) return;
    lastState = text;
    call('state', text);
  }

  // A style sheet may come when the caret stands already, and change the fonts there.
  document.addEventListener('load', event => {
    if (!(event.target instanceof HTMLLinkElement || event.target instanceof HTMLStyleElement))
      return;
    const before = lastState;
    stateStale = true;
    reportState();
    if (lastState !== before) call('styled');
  }, true);

  // --- Requests of the program -------------------------------------------------------------------

  // The program waits for this: everything that was done here is on the wire before the answer.
  function sync(token, withState) {
    flush();
    if (withState) reportState();
    call('synced', token, keysSeen);
  }

  // The engine takes the caret to the start of the text that it makes an item of, which may be a new
  // node. It stays where the user had it.
  function keepCaret(command) {
    const s = getSelection();
    if (!/List$/.test(command) || !s.isCollapsed || !s.focusNode || s.focusNode.nodeType !== 3)
      return () => {};
    const text = s.focusNode.data, offset = s.focusOffset;
    return () => {
      const node = s.focusNode;
      if (node && node.nodeType === 3 && node.data === text) s.collapse(node, offset);
    };
  }

  function execute(token, command, argument) {
    flush();
    const object = control;
    const putBack = keepCaret(command);
    let done = false;
    api.executing = true;
    try {
      done = api.units.execute(command, argument);
      putBack();
    } catch (error) {
      done = false;
    }
    api.executing = false;
    flush('c');
    if (object && object.isConnected && !controlHolds()) selectObject(object);
    flush();
    reportState();
    call('executed', token, done);
  }

  // A caret at the start of the page, if there is none.
  function ensureCaret() {
    if (!getSelection().rangeCount && document.body) getSelection().collapse(document.body, 0);
    focusPage();
    flush();
  }

  function begin() {
    if (typeof qt !== 'object' || !qt.webChannelTransport) return;
    qt.webChannelTransport.onmessage = () => {};
    const token = /^pw-(\d+)$/.exec(document.documentElement.id);
    if (token) call('ready', Number(token[1]));
  }

  const pwListeners = {changed: [], selected: [], shown: []};
  const api = {
    executing: false, begin, ensureCaret, focusPage, call, load, apply, sync, execute, sendAll,
    flush, select, selectObject, unobserved, hidden, record, childrenOf,
    later, reportState, listeners: pwListeners, KINDS,
    nodeOf: id => nodeOf.get(id),
    control: () => control, countKey: () => { keysSeen++; },
  };
  return api;
})();
