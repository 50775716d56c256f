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
    .grid { position: fixed; inset: 0; pointer-events: none; display: none; opacity: .45 }
    .frame { position: fixed; display: none; pointer-events: none; box-sizing: border-box;
             border: 1px solid #1d6fd8; box-shadow: 0 0 0 1px rgba(255,255,255,.7) }
    .handle { position: absolute; width: 9px; height: 9px; box-sizing: border-box; margin: -5px;
              background: #fff; border: 1px solid #1d6fd8; border-radius: 2px;
              pointer-events: auto }
    .size { position: absolute; left: 50%; top: 100%; transform: translate(-50%, 8px);
            font: 11px/16px sans-serif; color: #fff; background: #1d6fd8; border-radius: 3px;
            padding: 0 6px; white-space: nowrap; display: none }
    .dragging .size { display: block }
    .dragging { background: rgba(29,111,216,.08) }
  </style><div class="grid"></div><div class="frame"><div class="size"></div></div>`;
  const frame = shadow.querySelector('.frame');
  const grid = shadow.querySelector('.grid');
  const size = shadow.querySelector('.size');

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

  let drag = null;
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
    const box = drag ? drag.box : object.getBoundingClientRect();
    Object.assign(frame.style, {display: 'block', left: box.left - 1 + 'px',
                                top: box.top - 1 + 'px', width: box.width + 2 + 'px',
                                height: box.height + 2 + 'px'});
    const small = box.width < 24, flat = box.height < 24;
    handles.forEach((handle, i) => {
      const [, dx, dy] = HANDLES[i];
      const hidden = (small && dx === 0) || (flat && dy === 0);
      handle.style.display = hidden ? 'none' : '';
    });
  }
  let frameRequest = 0;
  function frameLater() {
    if (frameRequest) return;
    frameRequest = requestAnimationFrame(() => { frameRequest = 0; showFrame(); });
  }
  pw.listeners.selected.push(showFrame);
  pw.listeners.changed.push(() => { if (pw.control()) frameLater(); });
  pw.listeners.shown.push(() => { attach(); refreshSheets(); showFrame(); });
  addEventListener('scroll', () => { if (pw.control()) showFrame(); }, true);
  addEventListener('resize', frameLater);
  addEventListener('load', () => { if (pw.control()) frameLater(); }, true);

  // --- Resizing and moving ----------------------------------------------------------------------

  // Elements whose size stands in attributes; the others have it in their style.
  const SIZED = new Set(['IMG', 'TABLE', 'OBJECT', 'EMBED', 'APPLET', 'IFRAME', 'MARQUEE', 'VIDEO',
                         'HR']);
  const snapped = (value, step) =>
      settings.snap && step > 1 ? Math.max(1, Math.round(value / step)) * step : value;

  function startResize(e, dx, dy) {
    if (e.button !== 0 || !pw.control()) return;
    e.preventDefault();
    e.stopPropagation();
    const object = pw.control(), start = object.getBoundingClientRect();
    const ratio = start.height ? start.width / start.height : 1;
    drag = {object, box: {left: start.left, top: start.top, width: start.width,
                          height: start.height}, moved: false};
    frame.classList.add('dragging');
    const move = m => {
      drag.moved = true;
      let width = Math.max(1, start.width + dx * (m.clientX - e.clientX));
      let height = Math.max(1, start.height + dy * (m.clientY - e.clientY));
      // Pictures keep their shape at the corners; Shift lets go of it.
      if (dx && dy && object.tagName === 'IMG' && !m.shiftKey) height = width / ratio;
      width = snapped(Math.round(width), dx ? settings.gridX : 1);
      height = snapped(Math.round(height), dy ? settings.gridY : 1);
      drag.box = {left: dx < 0 ? start.right - width : start.left,
                  top: dy < 0 ? start.bottom - height : start.top, width, height};
      size.textContent = `${width} × ${height}`;
      showFrame();
    };
    const finish = commit => {
      removeEventListener('mousemove', move, true);
      removeEventListener('mouseup', up, true);
      removeEventListener('keydown', cancel, true);
      const {box, moved} = drag;
      drag = null;
      frame.classList.remove('dragging');
      if (commit && moved) resize(object, dx ? box.width : 0, dy || dx ? box.height : 0, dx, dy);
      showFrame();
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

  function resize(object, width, height, dx, dy) {
    const sides = [];
    if (dx) sides.push(['width', Math.round(width)]);
    if (dy) sides.push([object.tagName === 'HR' ? 'size' : 'height', Math.round(height)]);
    pw.flush();
    for (const [name, value] of sides) {
      const property = name === 'size' ? 'height' : name;
      if (SIZED.has(object.tagName) && !object.style[property])
        object.setAttribute(name, String(value));
      else
        object.style[property] = value + 'px';
    }
    pw.flush('c');
    pw.selectObject(object);
    pw.flush();
  }

  // --- Borders, marks of tags, grid ------------------------------------------------------------

  const MARKED = ['p', 'div', 'span', 'font', 'b', 'strong', 'i', 'em', 'u', 'a', 'center', 'pre',
                  'blockquote', 'address', 'form', 'ul', 'ol', 'li', 'dl', 'dt', 'dd', 'td', 'th',
                  'h1', 'h2', 'h3', 'h4', 'h5', 'h6'];
  const BORDERS = 'table:not([border]),table[border="0"],table:not([border])>*>tr>td,' +
      'table:not([border])>*>tr>th,table[border="0"]>*>tr>td,table[border="0"]>*>tr>th,' +
      'div,form{outline:1px dashed #b4b4b4;outline-offset:-1px}';
  const MARK = '{font:10px/12px monospace;color:#6b4fa0;background:#efeaf8;border-radius:2px;' +
      'padding:0 2px;margin:0 1px;font-weight:normal;font-style:normal;letter-spacing:0}';
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

  function refreshSheets() {
    const sheets = [];
    const add = text => {
      const sheet = new CSSStyleSheet();
      sheet.replaceSync(text);
      sheets.push(sheet);
    };
    add(BASE);
    if (settings.borders) add(BORDERS);
    if (settings.tags) add(markSheet());
    document.adoptedStyleSheets = sheets;
    const x = Math.max(2, settings.gridX), y = Math.max(2, settings.gridY);
    grid.style.display = settings.snap ? 'block' : 'none';
    grid.style.backgroundImage = 'radial-gradient(circle at .5px .5px, #666 .7px, transparent 1px)';
    grid.style.backgroundSize = `${x}px ${y}px`;
    if (settings.snap) attach();
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
})();
