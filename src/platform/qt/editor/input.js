// What the user does in the view: keys, mouse, clipboard and drops. Typing is left to the browser
// engine; commands are left to the program, which is told of them.
'use strict';

(function () {
  const on = (type, handler) => addEventListener(type, handler, {capture: true, passive: false});

  // --- Typing -----------------------------------------------------------------------------------

  on('beforeinput', e => {
    // Undo and redo belong to the program's document, which knows more than the view has seen.
    if (e.inputType === 'historyUndo' || e.inputType === 'historyRedo') {
      e.preventDefault();
      pw.call('command', e.inputType === 'historyUndo' ? 'undo' : 'redo');
      return;
    }
    // Formatting by a key of the engine's own would come twice: the program knows these keys too.
    if (/^format/.test(e.inputType) && !pw.executing) e.preventDefault();
    pw.units.beforeInput(e);
  });

  on('input', e => {
    const type = e.inputType || '';
    const found = pw.KINDS.find(([pattern]) => pattern.test(type));
    // Dragging text deletes it in one place and inserts it in another: that is one change. So is
    // a command, however many events the engine makes of it.
    if (type === 'deleteByDrag' || pw.executing) return;
    pw.units.close();
    pw.flush(found ? found[1] : 'c');
  });

  // --- Keys -------------------------------------------------------------------------------------

  // Keys that the engine would act on, and that the program has commands for.
  const OWN = new Set([65, 66, 67, 73, 85, 88, 89, 90]);  // A B C I U X Y Z
  const held = new Map();

  const ARROWS = {ArrowLeft: [-1, 0], ArrowRight: [1, 0], ArrowUp: [0, -1], ArrowDown: [0, 1]};

  // The program waits for the keys that it has handed over. One that inserts something has done so
  // only when its second event has come.
  let unfinished = false;
  const finishKey = () => {
    if (unfinished) pw.countKey();
    unfinished = false;
  };
  on('keypress', finishKey);

  on('keydown', e => {
    finishKey();
    pw.units.keyDown(e);
    const inserts = e.key.length === 1 || e.key === 'Enter';
    if (inserts && !e.ctrlKey && !e.altKey && !e.metaKey) unfinished = true;
    else pw.countKey();
    held.set(e.code || e.keyCode, {alt: e.altKey, control: e.ctrlKey, shift: e.shiftKey});
    if (e.ctrlKey && !e.altKey && OWN.has(e.keyCode)) e.preventDefault();
    const arrow = !e.ctrlKey && !e.altKey && !e.shiftKey && ARROWS[e.key];
    if (arrow && pw.nudge(...arrow)) e.preventDefault();
  });

  on('keyup', e => {
    finishKey();
    // The modifiers are those of the press: hands leave them in any order. A press that a shortcut
    // of the window has taken never came here, and must not act a second time.
    const name = e.code || e.keyCode;
    const pressed = held.get(name);
    held.delete(name);
    const modified = e.ctrlKey || e.altKey || e.keyCode === 112;
    if (!pressed && modified) return;
    const state = pressed || {alt: false, control: false, shift: e.shiftKey};
    pw.flush();
    pw.call('key', e.keyCode, state.alt, state.control, state.shift);
  });
  addEventListener('blur', () => held.clear());
  addEventListener('focus', () => pw.call('focused'));

  // --- Mouse ------------------------------------------------------------------------------------

  const OBJECTS = new Set(['IMG', 'HR', 'INPUT', 'SELECT', 'TEXTAREA', 'BUTTON', 'OBJECT', 'EMBED',
                           'APPLET', 'IFRAME', 'MARQUEE', 'VIDEO', 'AUDIO']);
  // Pressing one of these does what a form or a player does; here it only selects.
  const ACTIVE = new Set(['INPUT', 'SELECT', 'TEXTAREA', 'BUTTON', 'OBJECT', 'EMBED', 'APPLET',
                          'IFRAME', 'MARQUEE', 'VIDEO', 'AUDIO']);
  const EDGE = 5;  // pixels round a border that count as the border

  function onEdge(element, e) {
    const box = element.getBoundingClientRect();
    return e.clientX - box.left < EDGE || box.right - e.clientX < EDGE ||
           e.clientY - box.top < EDGE || box.bottom - e.clientY < EDGE;
  }

  function positioned(element) {
    for (let n = element; n && n !== document.body; n = n.parentElement)
      if (n.style && n.style.position === 'absolute') return n;
    return null;
  }

  function objectAt(e) {
    let element = e.target;
    if (!(element instanceof Element)) return null;
    for (let n = element; n; n = n.parentElement) if (OBJECTS.has(n.tagName)) return n;
    if (['TABLE', 'TBODY', 'THEAD', 'TFOOT', 'TR'].includes(element.tagName))
      return element.closest('table');
    const table = element.closest('table');
    if (table && onEdge(table, e)) return table;
    const layer = positioned(element);
    if (layer) return onEdge(layer, e) ? layer : null;
    // Behind the text lies what can only be got hold of where there is none.
    if (element !== document.body && element !== document.documentElement) return null;
    const under = document.elementsFromPoint(e.clientX, e.clientY)
        .find(n => !pw.hidden.has(n) && positioned(n));
    return under ? positioned(under) : null;
  }

  const known = node => {
    while (node && !node.pwLive) node = node.parentNode;
    return node ? node.pwId : 0;
  };

  let pressed = null;
  on('mousedown', e => {
    if (pw.hidden.has(e.target)) return;
    const object = objectAt(e);
    pressed = object;
    if (object && (e.button === 0 || e.button === 2)) {
      if (e.button === 2 || ACTIVE.has(object.tagName) || object !== e.target) e.preventDefault();
      if (document.activeElement !== document.body && document.activeElement)
        document.activeElement.blur();
      pw.selectObject(object);
      pw.startMove(e);
    } else if (pw.control() && e.button === 0) {
      // The press is in the text of the selected object. The engine would drag all of it.
      getSelection().removeAllRanges();
    }
    pw.flush();
    pw.call('mouse', 'down', known(object || e.target));
  });
  on('mouseup', e => {
    // A handle may have come up under the pointer since the press.
    if (pw.hidden.has(e.target) && !pressed) return;
    const object = pressed;
    pressed = null;
    // The engine ends a press on a picture with a caret beside it, behind our back.
    const target = object || e.target;
    pw.later(() => {
      if (object && object.isConnected && e.button === 0) pw.selectObject(object);
      pw.units.leave();
      pw.flush();
      pw.reportState();
      pw.call('mouse', 'up', known(target));
    });
  });
  on('dragstart', () => { pressed = null; });

  let lastMove = 0;
  on('mouseover', e => {
    if (e.timeStamp - lastMove < 250) return;
    lastMove = e.timeStamp;
    pw.call('mouse', 'over', 0);
  });
  on('dblclick', e => { if (!pw.hidden.has(e.target)) pw.call('mouse', 'double', known(e.target)); });
  on('contextmenu', e => {
    e.preventDefault();
    pw.flush();
    pw.reportState();
    pw.call('mouse', 'menu', known(e.target));
  });
  // A link is text here.
  for (const type of ['click', 'auxclick'])
    on(type, e => { if (!pw.hidden.has(e.target)) e.preventDefault(); });
  on('submit', e => e.preventDefault());

  // --- Clipboard and drops ----------------------------------------------------------------------

  for (const type of ['cut', 'copy', 'paste'])
    on(type, e => {
      e.preventDefault();
      pw.call('command', type);
    });

  let ownDrag = false;
  on('dragstart', () => { ownDrag = true; });
  on('dragend', () => {
    ownDrag = false;
    pw.flush();
  });
  on('dragover', e => { if (!ownDrag) e.preventDefault(); });

  function caretAt(x, y) {
    const range = document.caretRangeFromPoint(x, y);
    if (range) getSelection().collapse(range.startContainer, range.startOffset);
    pw.units.leave();
    pw.focusPage();
    pw.flush();
  }

  on('drop', e => {
    // Text of this page that is dragged within it is moved by the engine, and has nothing in it
    // that was not there.
    if (ownDrag) return;
    e.preventDefault();
    caretAt(e.clientX, e.clientY);
    pw.call('dropped', e.dataTransfer.getData('text/html'), e.dataTransfer.getData('text/plain'));
  });

  pw.caretAt = caretAt;
})();
