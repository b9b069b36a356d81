// The model report's behaviour: renders the data embedded in the page (see
// cli/support/reportdata.h for its shape) into the summary, the frequent
// items, the rules table (sorted by a column button, filtered as one types),
// the journeys picture and the "what comes next" box. Plain DOM and SVG, no
// library and nothing fetched, so the file works opened from disk.
(function () {
  'use strict';

  var data = JSON.parse(document.getElementById('report-data').textContent);
  var labels = data.items;
  var SVG = 'http://www.w3.org/2000/svg';

  // A rule row: [antecedent, consequent, support, confidence, cause, lift,
  // time ([mean, min, max] or null)].
  var rules = data.rules.rows.map(function (row, i) {
    return {
      rank: i + 1,
      antecedent: row[0],
      consequent: row[1],
      support: row[2],
      confidence: row[3],
      cause: row[4],
      lift: row[5],
      time: row[6] ? row[6][0] : null,
      timeRange: row[6],
      text: sequenceText(row[0]) + ' \u21d2 ' + sequenceText(row[1])
    };
  });

  function el(tag, attributes, text) {
    var node = document.createElement(tag);
    for (var name in attributes || {}) node.setAttribute(name, attributes[name]);
    if (text !== undefined) node.textContent = text;
    return node;
  }

  function svg(tag, attributes, text) {
    var node = document.createElementNS(SVG, tag);
    for (var name in attributes || {}) node.setAttribute(name, attributes[name]);
    if (text !== undefined) node.textContent = text;
    return node;
  }

  function sequenceText(sets) {
    return sets.map(function (set) {
      return '(' + set.map(function (i) { return labels[i]; }).join(', ') + ')';
    }).join(' ');
  }

  function fixed(x) { return x === null ? '' : x.toFixed(4); }

  function number(x) {
    if (typeof x !== 'number') return String(x);
    if (Number.isInteger(x)) return x.toLocaleString('en-US');
    return String(x);
  }

  function contains(sets, item) {
    return sets.some(function (set) { return set.indexOf(item) >= 0; });
  }

  // --- summary and frequent items -------------------------------------

  function renderSummary() {
    var body = document.getElementById('summary-body');
    var fields = {};
    data.summary.forEach(function (pair) {
      fields[pair[0]] = pair[1];
      // A long value (a file name) takes a row of its own.
      var wide = number(pair[1]).length > 10 ? { class: 'wide' } : {};
      body.appendChild(el('dt', wide, pair[0]));
      body.appendChild(el('dd', wide, number(pair[1])));
    });
    document.getElementById('lede').textContent =
      number(fields['customers (N)']) + ' customers, ' +
      number(fields['patterns']) + ' patterns, ' +
      number(data.rules.total) + ' rules (the ' + number(rules.length) +
      ' strongest are in this page)';
  }

  function renderFrequent() {
    var body = document.getElementById('items-body');
    var most = data.frequent.length ? data.frequent[0][2] : 1;
    data.frequent.forEach(function (row) {
      var tr = el('tr');
      tr.appendChild(el('td', {}, labels[row[0]]));
      tr.appendChild(el('td', { class: 'num' }, number(row[1])));
      var cell = el('td');
      var bar = el('div', { class: 'bar' });
      var fill = el('span', { 'aria-hidden': 'true' });
      fill.style.width = Math.max(1, 70 * row[2] / most) + '%';
      bar.appendChild(fill);
      bar.appendChild(el('span', { class: 'value' }, row[2].toFixed(4)));
      bar.lastChild.style.background = 'none';
      cell.appendChild(bar);
      tr.appendChild(cell);
      body.appendChild(tr);
    });
  }

  // --- rules table ------------------------------------------------------

  var columns = [
    { key: 'rank', title: '#', numeric: true, ascending: true },
    { key: 'antecedent', title: 'antecedent' },
    { key: 'consequent', title: 'consequent' },
    { key: 'support', title: 'support', numeric: true },
    { key: 'confidence', title: 'confidence', numeric: true },
    { key: 'cause', title: 'cause', numeric: true },
    { key: 'lift', title: 'lift', numeric: true }
  ];
  if (data.hasTime) {
    columns.push({
      key: 'time',
      title: data.timeUnit ? 'time to consequent (' + data.timeUnit + ')' : 'time to consequent',
      numeric: true
    });
  }
  var sortState = { key: 'rank', ascending: true };
  var filterText = '';

  function sortValue(rule, key) {
    if (key === 'antecedent' || key === 'consequent') return sequenceText(rule[key]);
    return rule[key];
  }

  function compareRules(a, b) {
    var x = sortValue(a, sortState.key);
    var y = sortValue(b, sortState.key);
    // Rules without a value go last in either direction.
    if (x === null || y === null) return (x === null) - (y === null);
    var order = x < y ? -1 : x > y ? 1 : a.rank - b.rank;
    return sortState.ascending || x === y ? order : -order;
  }

  function matchesFilter(rule) {
    if (!filterText) return true;
    return rule.antecedent.concat(rule.consequent).some(function (set) {
      return set.some(function (i) {
        return labels[i].toLowerCase().indexOf(filterText) >= 0;
      });
    });
  }

  function renderHead() {
    var head = document.getElementById('rules-head');
    head.textContent = '';
    columns.forEach(function (column) {
      var th = el('th', { scope: 'col', 'data-key': column.key });
      if (column.numeric) th.className = 'num';
      var active = sortState.key === column.key;
      if (active) th.setAttribute('aria-sort', sortState.ascending ? 'ascending' : 'descending');
      var button = el('button', { type: 'button' }, column.title);
      if (active) button.appendChild(el('span', { 'aria-hidden': 'true' }, sortState.ascending ? ' \u25b2' : ' \u25bc'));
      button.addEventListener('click', function () {
        if (sortState.key === column.key) {
          sortState.ascending = !sortState.ascending;
        } else {
          // Measures read best from the largest down, texts from A.
          sortState = { key: column.key, ascending: !column.numeric || !!column.ascending };
        }
        renderHead();
        renderRules();
        head.querySelector('th[data-key="' + column.key + '"] button').focus();
      });
      th.appendChild(button);
      head.appendChild(th);
    });
  }

  function renderRules() {
    var shown = rules.filter(matchesFilter).sort(compareRules);
    var body = document.getElementById('rules-body');
    var fragment = document.createDocumentFragment();
    shown.forEach(function (rule) {
      var tr = el('tr');
      tr.appendChild(el('td', { class: 'num' }, String(rule.rank)));
      tr.appendChild(el('td', { class: 'seq' }, sequenceText(rule.antecedent)));
      tr.appendChild(el('td', { class: 'seq' }, sequenceText(rule.consequent)));
      tr.appendChild(el('td', { class: 'num' }, fixed(rule.support)));
      tr.appendChild(el('td', { class: 'num' }, fixed(rule.confidence)));
      tr.appendChild(el('td', { class: 'num' }, fixed(rule.cause)));
      tr.appendChild(el('td', { class: 'num' }, fixed(rule.lift)));
      if (data.hasTime) {
        var cell = el('td', { class: 'num' }, rule.time === null ? '' : String(rule.time));
        if (rule.timeRange) cell.title = 'from ' + rule.timeRange[1] + ' to ' + rule.timeRange[2];
        tr.appendChild(cell);
      }
      fragment.appendChild(tr);
    });
    body.textContent = '';
    body.appendChild(fragment);
    document.getElementById('rule-count').textContent =
      shown.length + ' of ' + rules.length + ' rules shown';
    // A table of headings alone tells a screen reader of cells that are not
    // there; the count says that nothing matches.
    document.getElementById('rules-scroll').hidden = shown.length === 0;
  }

  // --- journeys -----------------------------------------------------------

  var kJourneySide = 50;  // rules drawn on each side: 100 in all

  function renderJourneySelect() {
    var select = document.getElementById('journey-item');
    var used = {};
    rules.forEach(function (rule) {
      rule.antecedent.concat(rule.consequent).forEach(function (set) {
        set.forEach(function (i) { used[i] = true; });
      });
    });
    Object.keys(used).map(Number).sort(function (a, b) {
      return labels[a].localeCompare(labels[b]);
    }).forEach(function (i) {
      select.appendChild(el('option', { value: String(i) }, labels[i]));
    });
    // The consequent of the rule of highest lift: the most surprising journey.
    var top = rules.reduce(function (best, rule) {
      return !best || rule.lift > best.lift ? rule : best;
    }, null);
    if (top) select.value = String(top.consequent[0][0]);
  }

  function clipped(text, limit) {
    return text.length <= limit ? text : text.slice(0, limit - 1) + '\u2026';
  }

  function renderJourneys() {
    var picture = document.getElementById('journey-svg');
    if (!rules.length) {
      picture.textContent = '';
      document.getElementById('journey-caption').textContent = 'The model has no rules within the report\'s bounds.';
      return;
    }
    var item = Number(document.getElementById('journey-item').value);
    var measure = document.getElementById('journey-measure').value;
    var byMeasure = function (a, b) { return b[measure] - a[measure] || a.rank - b.rank; };
    var entering = rules.filter(function (r) { return contains(r.consequent, item); })
      .sort(byMeasure).slice(0, kJourneySide);
    var leaving = rules.filter(function (r) { return contains(r.antecedent, item); })
      .sort(byMeasure).slice(0, kJourneySide);
    var drawn = entering.concat(leaving);
    var values = drawn.map(function (r) { return r[measure]; });
    var low = Math.min.apply(null, values.concat([Infinity]));
    var high = Math.max.apply(null, values.concat([-Infinity]));
    var width = function (v) { return high > low ? 1.5 + 8.5 * (v - low) / (high - low) : 4; };

    // Laid out at the panel's own width, so text keeps its size.
    var widthAll = Math.max(640, picture.parentNode.clientWidth - 4);
    var centreX = widthAll / 2, box = 84, gap = Math.min(160, widthAll / 8);
    var leftText = centreX - box - gap - 6, rightText = centreX + box + gap + 6;
    var characters = Math.floor(leftText / 7.2);
    var rowHeight = 32, top = 30;
    var rows = Math.max(entering.length, leaving.length, 1);
    var height = top + rows * rowHeight + 10;
    picture.textContent = '';
    picture.setAttribute('width', widthAll);
    picture.setAttribute('height', height);
    picture.setAttribute('viewBox', '0 0 ' + widthAll + ' ' + height);
    var centreY = top + rows * rowHeight / 2;
    var name = labels[item];

    picture.appendChild(svg('text', { x: leftText, y: 16, 'text-anchor': 'end', class: 'heading' },
      'leads to ' + name + ' (' + entering.length + ')'));
    picture.appendChild(svg('text', { x: rightText, y: 16, class: 'heading' },
      'follows ' + name + ' (' + leaving.length + ')'));

    function side(list, leftSide) {
      var offset = top + (rows - list.length) * rowHeight / 2;
      list.forEach(function (rule, k) {
        var y = offset + k * rowHeight + rowHeight / 2;
        var x0 = leftSide ? leftText + 6 : centreX + box;
        var x1 = leftSide ? centreX - box : rightText - 6;
        var bend = (x1 - x0) / 2;
        var path = leftSide
          ? 'M' + x0 + ',' + y + ' C' + (x0 + bend) + ',' + y + ' ' + (x1 - bend) + ',' + centreY + ' ' + x1 + ',' + centreY
          : 'M' + x0 + ',' + centreY + ' C' + (x0 + bend) + ',' + centreY + ' ' + (x1 - bend) + ',' + y + ' ' + x1 + ',' + y;
        var edge = svg('path', { d: path, class: leftSide ? 'in' : 'out', 'stroke-width': width(rule[measure]).toFixed(2) });
        edge.appendChild(svg('title', {}, rule.text + '\nsupport ' + fixed(rule.support) +
          ', confidence ' + fixed(rule.confidence) + ', lift ' + fixed(rule.lift)));
        picture.appendChild(edge);
        var other = leftSide ? rule.antecedent : rule.consequent;
        var textX = leftSide ? leftText : rightText;
        var anchor = leftSide ? 'end' : 'start';
        var label = svg('text', { x: textX, y: y - 2, 'text-anchor': anchor },
          clipped(sequenceText(other), characters));
        label.appendChild(svg('title', {}, rule.text));
        picture.appendChild(label);
        var detail = measure + ' ' + rule[measure].toFixed(2);
        if (!leftSide && !(rule.antecedent.length === 1 && rule.antecedent[0].length === 1)) {
          detail += ' \u00b7 after ' + sequenceText(rule.antecedent);
        }
        if (leftSide && !(rule.consequent.length === 1 && rule.consequent[0].length === 1)) {
          detail += ' \u00b7 with ' + sequenceText(rule.consequent);
        }
        picture.appendChild(svg('text', { x: textX, y: y + 12, 'text-anchor': anchor, class: 'sub' },
          clipped(detail, characters + 6)));
      });
    }
    side(entering, true);
    side(leaving, false);
    picture.appendChild(svg('rect', { x: centreX - box, y: centreY - 18, width: 2 * box, height: 36, rx: 6, fill: '#0b4f8a' }));
    var centre = svg('text', { x: centreX, y: centreY + 5, 'text-anchor': 'middle', class: 'centre' }, clipped(name, 20));
    centre.appendChild(svg('title', {}, name));
    picture.appendChild(centre);
    document.getElementById('journey-caption').textContent =
      'The ' + entering.length + ' strongest rules by ' + measure + ' that lead to ' + name +
      ' (left, blue) and the ' + leaving.length + ' that follow it (right, brown), among the rules in this page; ' +
      'the wider the edge, the higher the ' + measure + '.';
  }

  // --- what comes next ------------------------------------------------------

  var codeOf = {};
  labels.forEach(function (label, i) { codeOf[label.toLowerCase()] = i; });

  function parseHistory(text) {
    var unknown = [];
    var sets = text.split(';').map(function (order) {
      var set = [];
      order.split(',').forEach(function (raw) {
        var label = raw.trim();
        if (!label) return;
        var code = codeOf[label.toLowerCase()];
        if (code === undefined) unknown.push(label); else set.push(code);
      });
      return set;
    }).filter(function (set) { return set.length > 0; });
    return { sets: sets, unknown: unknown };
  }

  function subset(small, large) {
    return small.every(function (i) { return large.indexOf(i) >= 0; });
  }

  // Whether the antecedent's item sets lie in the history's, in order; the
  // earliest match of each leaves the most room for the rest.
  function follows(antecedent, history) {
    var next = 0;
    return antecedent.every(function (set) {
      while (next < history.length && !subset(set, history[next])) next++;
      if (next === history.length) return false;
      next++;
      return true;
    });
  }

  function predict(history) {
    var best = {};
    rules.forEach(function (rule) {
      if (!follows(rule.antecedent, history)) return;
      rule.consequent.forEach(function (set) {
        set.forEach(function (i) {
          var seen = best[i];
          if (!seen || rule.confidence > seen.confidence ||
              (rule.confidence === seen.confidence && rule.lift > seen.lift)) {
            best[i] = rule;
          }
        });
      });
    });
    return Object.keys(best).map(Number).map(function (i) {
      return { item: i, rule: best[i] };
    }).sort(function (a, b) {
      return b.rule.confidence - a.rule.confidence || b.rule.lift - a.rule.lift ||
        labels[a.item].localeCompare(labels[b.item]);
    }).slice(0, 10);
  }

  function renderPrediction() {
    var text = document.getElementById('history').value;
    var parsed = parseHistory(text);
    var table = document.getElementById('predict-table');
    var body = document.getElementById('predict-body');
    var note = document.getElementById('predict-note');
    body.textContent = '';
    var found = parsed.sets.length ? predict(parsed.sets) : [];
    var notes = [];
    if (parsed.unknown.length) notes.push('No rule in this page names ' + parsed.unknown.join(', ') + '.');
    if (!parsed.sets.length) {
      notes.push('Type some items to see what customers bought next.');
    } else if (!found.length) {
      notes.push('No rule in this page starts with this history.');
    } else {
      notes.push(found.length + (found.length === 1 ? ' item' : ' items') + ' predicted.');
    }
    note.textContent = notes.join(' ');
    table.hidden = found.length === 0;
    found.forEach(function (entry, k) {
      var tr = el('tr');
      tr.appendChild(el('td', { class: 'num' }, String(k + 1)));
      tr.appendChild(el('td', {}, labels[entry.item]));
      tr.appendChild(el('td', { class: 'num' }, fixed(entry.rule.confidence)));
      tr.appendChild(el('td', { class: 'num' }, fixed(entry.rule.lift)));
      tr.appendChild(el('td', {}, entry.rule.text));
      body.appendChild(tr);
    });
  }

  function renderChips() {
    var chips = document.getElementById('chips');
    var input = document.getElementById('history');
    data.frequent.slice(0, 8).forEach(function (row) {
      var button = el('button', { type: 'button' }, '+ ' + labels[row[0]]);
      button.addEventListener('click', function () {
        var text = input.value.trim();
        input.value = text && !/[;,]$/.test(text) ? text + ', ' + labels[row[0]] : text + labels[row[0]];
        renderPrediction();
      });
      chips.appendChild(button);
    });
  }

  function start() {
    renderSummary();
    renderFrequent();
    renderHead();
    renderRules();
    renderJourneySelect();
    renderJourneys();
    renderChips();
    var example = rules.length ? sequenceText(rules[0].antecedent)
      .replace(/^\(|\)$/g, '').replace(/\) \(/g, '; ') : '';
    document.getElementById('history').placeholder = example ? 'e.g. ' + example : '';
    document.getElementById('rule-filter').addEventListener('input', function (event) {
      filterText = event.target.value.trim().toLowerCase();
      renderRules();
    });
    document.getElementById('journey-item').addEventListener('change', renderJourneys);
    document.getElementById('journey-measure').addEventListener('change', renderJourneys);
    var resizing = null;
    window.addEventListener('resize', function () {
      clearTimeout(resizing);
      resizing = setTimeout(renderJourneys, 100);
    });
    document.getElementById('history').addEventListener('input', renderPrediction);
    document.getElementById('predict-form').addEventListener('submit', function (event) {
      event.preventDefault();
      renderPrediction();
    });
    renderPrediction();
    document.body.setAttribute('data-ready', 'true');
  }

  start();
})();
