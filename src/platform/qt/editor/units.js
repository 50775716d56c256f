// What the user edits as one: the merge variables, whose text belongs to the project. To the engine
// they are islands that can't be edited, by a style sheet that stands nowhere, so that the caret
// passes over them. Where the engine makes a mess of islands they are opened for one edit.
'use strict';

(function () {
  const UNIT = 'a[type="omMerge" i]';
  const sheet = new CSSStyleSheet();
  // One without a value is shown by its name.
  sheet.replaceSync(UNIT + '{-webkit-user-modify:read-only!important}' +
      '@media screen{' + UNIT + ':empty{display:inline-block!important;min-width:8px;' +
      'min-height:1em;border:0!important;outline:1px dashed #d8891d}' +
      UNIT + ':empty::before{content:attr(name)!important;opacity:.6}}');

  // --- Places -----------------------------------------------------------------------------------

  const elementOf = node => node.nodeType === 1 ? node : node.parentElement;
  const indexOf = node => [...node.parentNode.childNodes].indexOf(node);
  const before = unit => [unit.parentNode, indexOf(unit)];
  const behind = unit => [unit.parentNode, indexOf(unit) + 1];

  // The unit that a place is in, not beside.
  function unitAround(node) {
    const element = elementOf(node);
    return element && element.closest(UNIT);
  }

  function isInline(node) {
    return node.nodeType !== 1 || getComputedStyle(node).display.startsWith('inline');
  }

  function blockOf(node) {
    let element = elementOf(node);
    while (element && element !== document.body && isInline(element))
      element = element.parentElement;
    return element;
  }

  const holdsUnits = block => Boolean(block && block.querySelector(UNIT));

  // What stands next to a place, formatting aside: a unit, a text with a character, a break or an
  // object, a block; none at the end of the block that the place is in.
  function neighbour(node, offset, forwards) {
    const first = n => forwards ? n.firstChild : n.lastChild;
    const next = n => forwards ? n.nextSibling : n.previousSibling;
    let at = null, parent = node;
    if (node.nodeType === 1) {
      at = node.childNodes[forwards ? offset : offset - 1] || null;
    } else {
      if (forwards ? offset < node.data.length : offset > 0) return node;
      at = next(node);
      parent = node.parentNode;
    }
    for (;;) {
      while (!at) {
        if (!parent || !isInline(parent)) return null;
        at = next(parent);
        parent = parent.parentNode;
      }
      if (at.nodeType === 3 && at.data) return at;
      if (at.nodeType === 1 && (at.matches(UNIT) || !first(at) || !isInline(at))) return at;
      parent = at.nodeType === 1 ? at : parent;
      at = at.nodeType === 1 ? first(at) : next(at);
    }
  }

  const isElement = node => Boolean(node) && node.nodeType === 1;
  const isUnit = node => isElement(node) && node.matches(UNIT);
  const isBreak = node => isElement(node) && node.localName === 'br';
  const endsBlock = node => !node || !isInline(node);

  const around = s => [false, true].map(
      forwards => neighbour(s.focusNode, s.focusOffset, forwards));

  // --- The selection ----------------------------------------------------------------------------

  // A caret goes beside the unit that it has come into, on the nearer side; a selection takes a unit
  // whole. True when the selection was another one.
  function leave() {
    const s = getSelection();
    if (!s.rangeCount || pw.control()) return false;
    if (!unitAround(s.anchorNode) && !unitAround(s.focusNode)) return false;
    const range = s.getRangeAt(0);
    const start = unitAround(range.startContainer), end = unitAround(range.endContainer);
    const between = (from, to) => {
      const part = document.createRange();
      part.setStart(...from);
      part.setEnd(...to);
      return part.toString().length;
    };
    const from = [range.startContainer, range.startOffset];
    const to = [range.endContainer, range.endOffset];
    if (range.collapsed) {
      const isFirst = between([start, 0], from) <= between(from, [start, start.childNodes.length]);
      s.collapse(...(isFirst && start.firstChild ? before(start) : behind(start)));
      return true;
    }
    const forwards = s.anchorNode === from[0] && s.anchorOffset === from[1];
    const first = !start ? from
        : between(from, [start, start.childNodes.length]) ? before(start) : behind(start);
    const last = !end ? to : between([end, 0], to) ? behind(end) : before(end);
    if (forwards) s.setBaseAndExtent(...first, ...last);
    else s.setBaseAndExtent(...last, ...first);
    return true;
  }

  // --- Edits ------------------------------------------------------------------------------------

  function open() {
    sheet.disabled = true;
    pw.later(close);
  }
  function close() {
    if (!sheet.disabled) return;
    sheet.disabled = false;
    leave();
  }

  // The engine has no caret between a break and a unit, nor beside a unit that is empty: what is done
  // there is done here.
  function take(e, kind, change) {
    e.preventDefault();
    change();
    pw.flush(kind);
  }

  function prepareTyping(e, s) {
    // In a text there is a caret, and nearly all that is typed goes there.
    if (!e.data || s.focusNode.nodeType === 3 && s.focusNode.data) return;
    const [inFront, next] = around(s);
    const isLost = isUnit(next) && (isBreak(inFront) || !next.firstChild) ||
                   isUnit(inFront) && !inFront.firstChild;
    if (!isLost) return;
    take(e, 't', () => {
      const text = document.createTextNode(e.data);
      const unit = isUnit(next) ? next : inFront;
      unit.parentNode.insertBefore(text, unit === next ? unit : unit.nextSibling);
      s.collapse(text, text.data.length);
    });
  }

  function prepareDelete(e, s) {
    const forwards = /Forward$/.test(e.inputType);
    const beside = neighbour(s.focusNode, s.focusOffset, forwards);
    if (isUnit(beside)) {
      s.setBaseAndExtent(...before(beside), ...behind(beside));
      open();
      return;
    }
    if (isBreak(beside)) {
      const next = forwards ? neighbour(...behind(beside), true)
                            : neighbour(s.focusNode, s.focusOffset, true);
      if (isUnit(next)) {
        take(e, 'd', () => beside.remove());
        return;
      }
    }
    const [range] = e.getTargetRanges();
    if (range) joinBlocks(range);
  }

  // The engine drops islands from the paragraphs that it joins.
  function joinBlocks(range) {
    const first = blockOf(range.startContainer), last = blockOf(range.endContainer);
    if (first !== last && (holdsUnits(first) || holdsUnits(last))) open();
  }

  // In the midst of its text it splits a paragraph well only where it can edit on both sides. At its
  // ends it would copy a unit that is open, and finds no end within formatting.
  function prepareBreak(s) {
    const [inFront, next] = around(s);
    if (!isUnit(inFront) && !isUnit(next)) return;
    const isEmpty = node => isUnit(node) && !node.firstChild;
    if (!endsBlock(inFront) && !endsBlock(next) || isEmpty(inFront) || isEmpty(next)) {
      open();
      return;
    }
    let outer = isUnit(next) ? next : inFront;
    while (isInline(outer.parentNode)) outer = outer.parentNode;
    s.collapse(...(isUnit(next) ? before(outer) : behind(outer)));
  }

  function beforeInput(e) {
    const s = getSelection();
    if (pw.executing || !s.rangeCount) return;
    if (!s.isCollapsed) joinBlocks(s.getRangeAt(0));
    else if (e.inputType.startsWith('delete')) prepareDelete(e, s);
    else if (/^insert(Paragraph|LineBreak)$/.test(e.inputType)) prepareBreak(s);
    else if (e.inputType === 'insertText') prepareTyping(e, s);
  }

  // --- Keys that move the caret -----------------------------------------------------------------

  // The unit that a line begins with behind a break, when the caret is in that line.
  function unitAtStartOfLine(s) {
    let at = [s.focusNode, s.focusOffset], unit = null;
    for (let node = neighbour(...at, false); node && isInline(node) && !isBreak(node);
         node = neighbour(...at, false)) {
      unit = isUnit(node) ? node : null;
      at = before(node);
    }
    const inFront = neighbour(...at, false);
    if (!unit || !isBreak(inFront)) return null;
    const caret = s.getRangeAt(0).getClientRects()[0] || unit.getBoundingClientRect();
    return caret.top < unit.getBoundingClientRect().bottom ? unit : null;
  }

  // Where the engine would not go: over an empty unit, and in front of one behind a break.
  function move(e) {
    const s = getSelection();
    if (!s.rangeCount || !s.isCollapsed || e.ctrlKey || e.altKey || e.metaKey || e.shiftKey) return;
    let place = null;
    if (e.key === 'Home') {
      if (!holdsUnits(blockOf(s.focusNode))) return;
      const unit = unitAtStartOfLine(s);
      place = unit && before(unit);
    } else if (e.key === 'ArrowLeft' || e.key === 'ArrowRight') {
      const isLeft = getComputedStyle(elementOf(s.focusNode)).direction === 'rtl';
      const forwards = (e.key === 'ArrowRight') !== isLeft;
      const unit = neighbour(s.focusNode, s.focusOffset, forwards);
      place = isUnit(unit) && (forwards ? behind(unit) : before(unit));
    }
    if (!place) return;
    e.preventDefault();
    s.collapse(...place);
  }

  function keyDown(e) {
    close();
    leave();
    move(e);
  }

  // Runs a command of the engine's. Formatting is for what units hold, too; a link within an anchor
  // is none.
  function execute(command, argument) {
    const opens = !/^(createLink|insertText|insertHTML|insertParagraph|delete|forwardDelete)$/
        .test(command) && holdsUnits(document.body);
    if (opens) sheet.disabled = true;
    try {
      return document.execCommand(command, false, argument);
    } finally {
      close();
    }
  }

  pw.units = {sheet, leave, close, keyDown, beforeInput, execute};
})();
