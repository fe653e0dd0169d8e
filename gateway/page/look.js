// SPDX-License-Identifier: GPL-3.0-or-later
// Before the first picture is drawn, so that a page for the night never begins bright.
'use strict';
function applyLook(look) {
  document.documentElement.dataset.look = look;
  document.querySelector('meta[name=theme-color]').content = look === 'night' ? '#000000' : '#12171d';
}
applyLook((() => {
  const asked = new URLSearchParams(location.search).get('look');
  if (asked === 'night' || asked === 'dark') return asked;
  try { return localStorage.getItem('look') === 'night' ? 'night' : 'dark'; } catch { return 'dark'; }
})());
