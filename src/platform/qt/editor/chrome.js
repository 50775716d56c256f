// What the editor draws over the page: the frame of a selected object with its handles, the borders
// of tables that have none, the marks of tags, the grid. None of it is in the page: it hangs in the
// shadow of one element that the protocol does not see, and in style sheets that stand nowhere.
'use strict';

(function () {
  const host = document.createElement('pw-chrome');
  host.setAttribute('contenteditable', 'false');
  host.setAttribute('style', 'all:initial!important;position:fixed!important;left:0!important;' +
      'top:0!important;width:0!important;height:0!important;z-index:2147483647!important;' +
      'user-select:none!important');
  pw.hidden.add(host);
  const shadow = host.attachShadow({mode: 'closed'});
  shadow.innerHTML = `<style>
    .grid { position: fixed; inset: 0; pointer-events: none; display: none; opacity: .6 }
    .cells { position: fixed; left: 0; top: 0; pointer-events: none }
    .cells div { position: absolute; box-sizing: border-box; border: 2px solid #1d6fd8;
                 background: rgba(29,111,216,.16) }
    .frame { position: fixed; display: none; pointer-events: none; box-sizing: border-box;
             border: 1px solid #1d6fd8; box-shadow: 0 0 0 1px rgba(255,255,255,.7) }
    .locked { border-style: dashed }
    .edge { position: absolute; pointer-events: none }
    .movable .edge { pointer-events: auto; cursor: move }
    .handle { position: absolute; width: 9px; height: 9px; box-sizing: border-box; margin: -5px;
              background: #fff; border: 1px solid #1d6fd8; border-radius: 2px;
              pointer-events: auto }
    .size { position: absolute; left: 50%; top: 100%; transform: translate(-50%, 8px);
            font: 11px/16px sans-serif; color: #fff; background: #1d6fd8; border-radius: 3px;
            padding: 0 6px; white-space: nowrap; display: none }
    .dragging .size { display: block }
    .dragging { background: rgba(29,111,216,.08) }
    @media print { .grid, .cells, .frame { display: none !important } }
  </style><div class="grid"></div><div class="cells"></div><div class="frame"><div class="size"></div></div>`;
  const frame = shadow.querySelector('.frame');
  const grid = shadow.querySelector('.grid');
  const cellMarks = shadow.querySelector('.cells');
  const size = shadow.querySelector('.size');

  // Along each side runs a strip by which a layer is dragged.
  for (const place of ['left:-4px;right:-4px;top:-4px;height:8px',
                       'left:-4px;right:-4px;bottom:-4px;height:8px',
                       'top:-4px;bottom:-4px;left:-4px;width:8px',
                       'top:-4px;bottom:-4px;right:-4px;width:8px']) {
    const edge = document.createElement('div');
    edge.className = 'edge';
    edge.style.cssText = place;
    edge.addEventListener('mousedown', e => startMove(e));
    frame.append(edge);
  }

  // Each handle: which sides it moves, and where it sits in per cent.
  const HANDLES = [
    ['nw', -1, -1, 0, 0], ['n', 0, -1, 50, 0], ['ne', 1, -1, 100, 0], ['e', 1, 0, 100, 50],
    ['se', 1, 1, 100, 100], ['s', 0, 1, 50, 100], ['sw', -1, 1, 0, 100], ['w', -1, 0, 0, 50]];
  const handles = HANDLES.map(([name, dx, dy, left, top]) => {
    const handle = document.createElement('div');
    handle.className = 'handle';
    handle.style.cssText = `left:${left}%;top:${top}%;cursor:${name}-resize`;
    handle.addEventListener('mousedown', e => startResize(e, dx, dy));
    frame.append(handle);
    return handle;
  });

  const settings = {gridX: 50, gridY: 50, snap: false, borders: false, tags: false};

  // --- The frame --------------------------------------------------------------------------------

  let drag = null;      // what the mouse is doing to the object: {box, placement}
  let asked = null;     // the same, from the request to the program until the page has changed
  function attach() {
    const root = document.documentElement;
    if (root && host.parentNode !== root) root.append(host);
  }

  function showFrame() {
    const object = pw.control();
    if (!object || !object.isConnected) {
      frame.style.display = 'none';
      return;
    }
    attach();
    const {box} = drag || asked || {box: object.getBoundingClientRect()};
    Object.assign(frame.style, {display: 'block', left: box.left - 1 + 'px',
                                top: box.top - 1 + 'px', width: box.width + 2 + 'px',
                                height: box.height + 2 + 'px'});
    frame.classList.toggle('locked', isLocked(object));
    frame.classList.toggle('movable', isMovable(object));
    const small = box.width < 24, flat = box.height < 24;
    handles.forEach((handle, i) => {
      const [, dx, dy] = HANDLES[i];
      const hidden = isLocked(object) || (small && dx === 0) || (flat && dy === 0);
      handle.style.display = hidden ? 'none' : '';
    });
  }
  let frameRequest = 0;
  function frameLater() {
    if (frameRequest) return;
    frameRequest = requestAnimationFrame(() => { frameRequest = 0; showFrame(); showCells(); });
  }

  // The cells that a command on the selection would act on: a rectangle, where the colour of
  // selected text runs on to the end of each row.
  let cells = [];
  function showCells() {
    cellMarks.replaceChildren();
    if (!cells.length) return;
    attach();
    for (const cell of cells) {
      if (!cell.isConnected) continue;
      const box = cell.getBoundingClientRect(), mark = document.createElement('div');
      mark.style.cssText = `left:${box.left}px;top:${box.top}px;` +
          `width:${box.width}px;height:${box.height}px`;
      cellMarks.append(mark);
    }
  }
  pw.markCells = ids => {
    cells = ids.map(id => pw.nodeOf(id)).filter(Boolean);
    showCells();
  };
  pw.listeners.selected.push(showFrame);
  // For tests: the left and the width of each, in whole pixels.
  pw.cellMarks = () => [...cellMarks.children].map(mark => {
    const box = mark.getBoundingClientRect();
    return [Math.round(box.left), Math.round(box.width)];
  });
  pw.listeners.changed.push(() => {
    if (asked && !isOnItsWay()) asked = null;
    if (pw.control() || cells.length) frameLater();
  });
  pw.listeners.shown.push(() => {
    attach();
    cells = [];
    refreshSheets();
    showFrame();
    showCells();
  });
  addEventListener('scroll', () => {
    asked = null;
    placeGrid();
    showCells();
    if (pw.control()) showFrame();
  }, true);
  addEventListener('resize', frameLater);
  document.addEventListener('load', () => { if (pw.control() || cells.length) frameLater(); }, true);

  // --- Resizing and moving ----------------------------------------------------------------------

  const same = (a, b) => Object.keys(a).every(side => a[side] === b[side]);
  // What the page has in place of a placement that was asked.
  function present(object, placement) {
    const style = getComputedStyle(object), now = {};
    for (const side of Object.keys(placement)) now[side] = Math.round(parseFloat(style[side])) || 0;
    return now;
  }

  // Keys can come faster than the program answers: the page then has what was asked before.
  function isOnItsWay() {
    if (!asked.object.isConnected) return false;
    const now = present(asked.object, asked.placement);
    return !same(asked.placement, now) && asked.before.some(past => same(now, past));
  }

  // The program changes the page: it knows how the style is written.
  function place(object, box, placement) {
    pw.flush();
    const before = asked && asked.object === object ? [...asked.before, asked.placement]
                                                    : [present(object, placement)];
    asked = {object, box, placement, before};
    showFrame();
    pw.call('placed', object.pwId, JSON.stringify(placement));
  }

  const isLayer = object => ['absolute', 'fixed'].includes(getComputedStyle(object).position);
  const isLocked = object => object.hasAttribute('data-locked');
  const isMovable = object => isLayer(object) && !isLocked(object);

  const onGrid = (value, step) =>
      settings.snap && step > 1 ? Math.round(value / step) * step : Math.round(value);
  const sizeOnGrid = (value, step) => Math.max(settings.snap && step > 1 ? step : 1,
                                               onGrid(value, step));

  // Where a layer stands: the left and top of its style, as they come out.
  function placeOf(object) {
    if (asked && asked.object === object && 'left' in asked.placement)
      return [asked.placement.left, asked.placement.top];
    const style = getComputedStyle(object);
    return [parseFloat(style.left) || 0, parseFloat(style.top) || 0];
  }

  // Goes with the mouse from a press to its release, Escape calls it off. `moved` is asked, with the
  // way from the press and the event, for a box to draw, the placement that it stands for, and a
  // text that says so.
  function follow(e, object, moved) {
    e.preventDefault();
    e.stopPropagation();
    asked = null;
    const move = m => {
      const [x, y] = [m.clientX - e.clientX, m.clientY - e.clientY];
      if (!drag && Math.abs(x) + Math.abs(y) < 3) return;
      drag = moved(x, y, m);
      frame.classList.add('dragging');
      size.textContent = drag.text;
      showFrame();
    };
    const finish = commit => {
      removeEventListener('mousemove', move, true);
      removeEventListener('mouseup', up, true);
      removeEventListener('keydown', cancel, true);
      frame.classList.remove('dragging');
      const done = drag;
      drag = null;
      if (commit && done && object.isConnected) place(object, done.box, done.placement);
      else showFrame();
      pw.selectObject(object);
      pw.flush();
    };
    const up = u => {
      u.preventDefault();
      u.stopPropagation();
      finish(true);
    };
    const cancel = k => {
      if (k.key !== 'Escape') return;
      k.preventDefault();
      k.stopPropagation();
      finish(false);
    };
    addEventListener('mousemove', move, true);
    addEventListener('mouseup', up, true);
    addEventListener('keydown', cancel, true);
  }

  // What a box has more than the width and height that make it.
  function extraOf(object) {
    const style = getComputedStyle(object);
    if (style.boxSizing === 'border-box' || ['TABLE', 'HR'].includes(object.tagName)) return [0, 0];
    const sum = names => names.reduce((all, name) => all + (parseFloat(style[name]) || 0), 0);
    return [sum(['paddingLeft', 'paddingRight', 'borderLeftWidth', 'borderRightWidth']),
            sum(['paddingTop', 'paddingBottom', 'borderTopWidth', 'borderBottomWidth'])];
  }

  function startResize(e, dx, dy) {
    const object = pw.control();
    if (e.button !== 0 || !object || isLocked(object)) return;
    const start = object.getBoundingClientRect();
    const ratio = start.height ? start.width / start.height : 1;
    const [left, top] = placeOf(object), [moreWidth, moreHeight] = extraOf(object);
    const movable = isMovable(object);
    follow(e, object, (x, y, m) => {
      let width = Math.max(1, start.width + dx * x), height = Math.max(1, start.height + dy * y);
      // Pictures keep their shape at the corners; Shift lets go of it.
      if (dx && dy && object.tagName === 'IMG' && !m.shiftKey) height = width / ratio;
      if (dx) width = sizeOnGrid(width, settings.gridX);
      if (dy) height = sizeOnGrid(height, settings.gridY);
      const box = {left: dx < 0 ? start.right - width : start.left,
                   top: dy < 0 ? start.bottom - height : start.top, width, height};
      const placement = {};
      if (dx) placement.width = Math.max(1, Math.round(width - moreWidth));
      if (dy) placement.height = Math.max(1, Math.round(height - moreHeight));
      // Only a layer can grow to the left and the top.
      if (movable && dx < 0) placement.left = Math.round(left + box.left - start.left);
      if (movable && dy < 0) placement.top = Math.round(top + box.top - start.top);
      return {box, placement, text: `${Math.round(width)} × ${Math.round(height)}`};
    });
  }

  // True when the press takes hold of a layer.
  function startMove(e) {
    const object = pw.control();
    if (e.button !== 0 || !object || !isMovable(object)) return false;
    const start = object.getBoundingClientRect();
    const [left, top] = placeOf(object);
    // Nobody gets a layer back that has left the page to the left or the top.
    const [leftmost, topmost] = [-(start.left + scrollX), -(start.top + scrollY)];
    follow(e, object, (x, y) => {
      const newLeft = onGrid(left + Math.max(x, leftmost), settings.gridX);
      const newTop = onGrid(top + Math.max(y, topmost), settings.gridY);
      return {box: {left: start.left + newLeft - left, top: start.top + newTop - top,
                    width: start.width, height: start.height},
              placement: {left: newLeft, top: newTop}, text: `${newLeft}, ${newTop}`};
    });
    return true;
  }

  // An arrow key: one pixel, or to the next line of the grid. True when the key has been used.
  function nudge(dx, dy) {
    const object = pw.control();
    if (!object || !isLayer(object)) return false;
    if (isLocked(object)) return true;
    const step = (value, by, grid) => {
      if (!by) return Math.round(value);
      if (!settings.snap || grid < 2) return Math.round(value) + by;
      return (by > 0 ? Math.floor(value / grid) + 1 : Math.ceil(value / grid) - 1) * grid;
    };
    const [left, top] = placeOf(object);
    const placement = {left: step(left, dx, settings.gridX), top: step(top, dy, settings.gridY)};
    const {box} = asked || {box: object.getBoundingClientRect()};
    place(object, {left: box.left + placement.left - left, top: box.top + placement.top - top,
                   width: box.width, height: box.height}, placement);
    return true;
  }

  // Where an object would have to be put to stand, taken out of the text, where it stands now. It is
  // tried out: there is no other way to know all that bears on it.
  function freePlace(object) {
    const written = object.getAttribute('style');
    const style = object.style;
    const measure = () => {
      const box = object.getBoundingClientRect();
      return {left: box.left + scrollX, top: box.top + scrollY, width: box.width,
              height: box.height};
    };
    const wanted = measure(), result = {};
    const set = (name, value) => style.setProperty(name, value, 'important');
    pw.unobserved(() => {
      set('position', 'absolute');
      for (const [side, opposite] of [['left', 'right'], ['top', 'bottom']]) {
        set(side, '0');
        set(opposite, 'auto');
      }
      const origin = measure();
      for (const side of ['left', 'top']) {
        result[side] = Math.round(wanted[side] - origin[side]);
        set(side, result[side] + 'px');
      }
      for (const side of ['width', 'height']) {
        if (Math.abs(measure()[side] - wanted[side]) < 1) continue;
        // Rounded up: a text that lacks a part of a pixel goes to another line.
        set(side, wanted[side] + 'px');
        result[side] = Math.ceil(2 * wanted[side] - measure()[side] - 0.01);
        set(side, result[side] + 'px');
      }
      if (written === null) object.removeAttribute('style');
      else object.setAttribute('style', written);
    });
    return result;
  }

  pw.startMove = startMove;
  pw.nudge = nudge;
  pw.freePlace = (token, id) => {
    const object = pw.nodeOf(id);
    const found = object instanceof HTMLElement && object.isConnected ? freePlace(object) : {};
    pw.call('freePlace', token, JSON.stringify(found));
  };

  // --- Borders, marks of tags, grid ------------------------------------------------------------

  const MARKED = ['p', 'div', 'span', 'font', 'b', 'strong', 'i', 'em', 'u', 'a', 'center', 'pre',
                  'blockquote', 'address', 'form', 'ul', 'ol', 'li', 'dl', 'dt', 'dd', 'td', 'th',
                  'h1', 'h2', 'h3', 'h4', 'h5', 'h6'];
  const BORDERS = 'table:not([border]),table[border="0"],table:not([border])>*>tr>td,' +
      'table:not([border])>*>tr>th,table[border="0"]>*>tr>td,table[border="0"]>*>tr>th,' +
      'div,form{outline:1px dashed #b4b4b4;outline-offset:-1px}';
  const MARK = '{font:10px/12px monospace;color:#6b4fa0;background:#efeaf8;border-radius:2px;' +
      'padding:0 2px;margin:0 1px;letter-spacing:0;text-indent:0;text-transform:none;' +
      // On its own it does not take part in an underline.
      'display:inline-block}';
  function markSheet() {
    const both = MARKED.flatMap(tag => [`body ${tag}::before`, `body ${tag}::after`]).join(',');
    return both + MARK + MARKED.map(tag => `body ${tag}::before{content:"<${tag}>"}` +
        `body ${tag}::after{content:"</${tag}>"}`).join('') +
        'body br::before{content:"<br>"}';
  }
  // The rules of the editor itself: pictures that are missing still have a place to be pressed.
  const BASE = 'img:not([width]):not([height]):not([style]){min-width:8px;min-height:8px}' +
      'a[name]:empty{display:inline-block;min-width:8px;min-height:1em;' +
      'border-left:3px solid #d8891d}';

  // The frame says that an object is selected. The colour of selected text would only hide it.
  const PLAIN = '::selection{background:transparent!important;color:inherit!important}';
  let plain = false;
  pw.listeners.selected.push(() => {
    if (plain !== Boolean(pw.control())) refreshSheets();
  });

  function refreshSheets() {
    plain = Boolean(pw.control());
    const sheets = [];
    const add = text => {
      const sheet = new CSSStyleSheet();
      sheet.replaceSync(`@media screen{${text}}`);
      sheets.push(sheet);
    };
    add(BASE);
    sheets.push(pw.units.sheet);
    if (plain) add(PLAIN);
    if (settings.borders) add(BORDERS);
    if (settings.tags) add(markSheet());
    document.adoptedStyleSheets = sheets;
    const x = Math.max(2, settings.gridX), y = Math.max(2, settings.gridY);
    grid.style.display = settings.snap ? 'block' : 'none';
    // Light round the dark dots, for pages with a dark ground.
    grid.style.backgroundImage =
        'radial-gradient(circle at 2px 2px, #335 1px, #fff 1.2px, #fff 1.7px, transparent 1.9px)';
    grid.style.backgroundSize = `${x}px ${y}px`;
    placeGrid();
    if (settings.snap) attach();
  }

  // The lines of the grid belong to the page. To ask how far the page is scrolled is to have it
  // laid out.
  function placeGrid() {
    if (!settings.snap) return;
    grid.style.backgroundPosition = `${-scrollX - 2}px ${-scrollY - 2}px`;
  }

  pw.configure = changes => {
    Object.assign(settings, changes);
    refreshSheets();
    frameLater();
  };
  pw.scrollTo = id => {
    const node = pw.nodeOf(id);
    if (node && node.scrollIntoView) node.scrollIntoView({block: 'nearest'});
  };
  pw.scrollToSelection = () => {
    const chosen = getSelection();
    if (!chosen.rangeCount) return;
    const range = chosen.getRangeAt(0), start = range.startContainer;
    const element = start.nodeType === 1 ? start : start.parentElement;
    const place = () => range.getClientRects()[0] || element.getBoundingClientRect();
    const isSeen = ({left, top, right, bottom}) =>
        left >= 0 && top >= 0 && right <= innerWidth && bottom <= innerHeight;
    // Boxes with scroll bars of their own first, then the page.
    if (element && !isSeen(place())) element.scrollIntoView({block: 'nearest', inline: 'nearest'});
    const {left, top, right, bottom} = place();
    scrollBy(left < 0 || right > innerWidth ? left - innerWidth / 3 : 0,
             top < 0 || bottom > innerHeight ? top - innerHeight / 3 : 0);
  };
})();
