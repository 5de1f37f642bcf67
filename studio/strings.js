// Every text of the page. Texts of effects and of their parameters come from the library.
export const text = {
  product: 'zel studio',
  // The bar
  undo: 'Undo', redo: 'Redo', split: 'Before and after', before: 'Before', after: 'After', zoomIn: 'Larger', zoomOut: 'Smaller',
  fit: 'Fit', actual: '100 %', loupe: 'Loupe', faces: 'Faces', theme: 'Light or dark', help: 'Help',
  batch: 'Apply to folder', save: 'Save', recipes: 'Recipes',
  // Pictures
  pictures: 'Pictures', noPictures: 'There are no pictures in this folder.',
  dropHere: 'Drop a picture here', choose: 'Choose a file',
  welcome: 'Choose a picture at the side, or drop one here.',
  emptyFolder: 'This folder holds no pictures. Drop one here.',
  cannotRead: '{name} {why}',
  opening: 'Opening {name}', tooLarge: '{name} is larger than 512 MB.',
  // The chain
  effects: 'Effects', add: 'Add an effect', search: 'Search effects', nothingFound: 'No effect has this name.',
  emptyChain: 'Effects run from top to bottom. Add the first one.',
  remove: 'Remove {title}', switchOff: 'Switch {title} off', switchOn: 'Switch {title} on',
  move: 'Move {title}', details: 'Settings of {title}', reset: 'Defaults', duplicate: 'Duplicate',
  blend: 'Blend', advanced: 'More settings', explain: 'Explain settings', clearAll: 'Remove all',
  movedTo: '{title} is now step {position} of {count}', stepOff: '{title} is off', stepOn: '{title} is on',
  added: '{title} was added', removed: '{title} was removed',
  waitMask: 'Paint a mask to begin.', waitSecond: 'Choose a second picture.', waitDrag: 'Drag in the picture to begin.',
  waitSpot: 'Click in the picture to begin.', waitValue: 'A value is missing: {name}.',
  allFaces: 'All faces', faceNumber: 'Face {number}', none: 'None', on: 'On', off: 'Off',
  // By hand
  mask: 'Mask', paint: 'Paint', painting: 'Painting', clear: 'Clear', invert: 'Invert', done: 'Done',
  size: 'Size', softness: 'Softness', erase: 'Erase', showMask: 'Show mask', brush: 'Brush',
  depth: 'Depth', showDepth: 'Show', pushDepth: 'Push', nearer: 'Nearer', farther: 'Farther', amount: 'Amount',
  resetDepth: 'As estimated', estimating: 'Estimating depth',
  second: 'Second picture', pick: 'Pick', pickLong: 'Pick in the picture', automatic: 'Automatic',
  drag: 'Drag in the picture', dragAgain: 'Drag to push. Every new drag is a step of its own.',
  spot: 'Click in the picture', spotHint: 'Click on the middle. Every new click is a step of its own.',
  focusHint: 'Click on what should be sharp.', numbers: 'Numbers',
  maskHint: 'Paint where the effect should act.', depthHint: 'Paint to bring regions nearer or push them farther.',
  facesHint: 'Drag a point to where it belongs.', eyesHintLeft: 'Click on the middle of the eye at the left.',
  eyesHintRight: 'Now on the middle of the eye at the right.',
  placeByEyes: 'Place by two eyes', wholeFace: 'Whole face', follow: 'Neighbours follow', removeFace: 'Remove face',
  findAgain: 'As found', faceCount: '{count} faces', oneFace: '1 face', noFace: 'No face was found',
  point: 'Point {number}, {part}', part: {
    contour: 'contour', leftEye: 'left eye', leftBrow: 'left brow', mouth: 'mouth', nose: 'nose', rightEye: 'right eye',
    rightBrow: 'right brow'},
  // State
  ready: 'Ready', working: 'Working', fullSize: 'Rendering at full size', previewTime: 'Preview {ms} ms',
  fullTime: 'Full size', pixels: '{width} × {height}', lost: 'The studio has ended. Start it again in the terminal.',
  failed: '{title}: {why}', percent: '{value} %',
  // Saving
  saveTitle: 'Save the result', fileName: 'File name', replace: 'Replace the file that is there', saving: 'Saving',
  saved: 'Saved as {name}', cancel: 'Cancel', close: 'Close', saveNote: 'The whole picture is worked on, {size}.',
  steps: '{count} steps wait for a mask or a value and are left out.',
  // Batch
  batchTitle: 'Apply to folder', batchText: 'The same effects on every picture; faces are found in each.',
  batchFolder: 'Folder for the results', batchAll: 'All pictures ({count})', batchStart: 'Start', batchStop: 'Stop',
  batchReplace: 'Do again what is there already', batchState: '{done} of {total}', batchSkipped: '{count} were there already',
  batchLeft: 'Belongs to one picture, left out: {titles}', batchDone: 'Done: {done} pictures in {folder}',
  batchFailed: '{count} failed', batchEmpty: 'Add an effect first.', choosePictures: 'Pictures to work on',
  // Recipes
  recipesTitle: 'Recipes', recipeName: 'Name', recipeSave: 'Save these effects', recipeLoad: 'Load', noRecipes: 'There are no recipes in this folder.',
  recipeSaved: 'Saved as {name}', recipeText: 'A recipe is a file in the folder; the command reads it too.',
  recipeLoaded: '{name} was loaded',
  // Keys
  helpTitle: 'Keys', keys: [
    ['Ctrl Z, Ctrl Shift Z', 'undo, redo'], ['A', 'add an effect'], ['B', 'hold to see the picture before'],
    ['D', 'before and after, with a divider; Shift with the arrows moves it'], ['+, −, 0, 1', 'larger, smaller, fit, 100 %'],
    ['L', 'loupe at 100 %'], ['F', 'faces'], ['[, ]', 'brush smaller, larger'], ['E', 'erase'],
    ['Ctrl S', 'save'], ['Alt with up, down', 'move the effect in focus'], ['Delete', 'remove the effect in focus'],
    ['Arrows', 'in the picture: move the cursor, with Shift by a pixel'],
    ['Space', 'in the picture: press and release at the cursor'], ['comma, full stop', 'previous, next point of a face'],
    ['Page up, page down', 'previous, next picture'], ['Escape', 'leave the tool']],
  keysMouse: 'Wheel or two fingers: zoom. Space held with the mouse, or the middle button: move the picture.',
  viewLabel: 'The picture. Arrows move a cursor, space presses it.'
};

export function say(key, values = {}) {
  return (text[key] ?? key).replace(/\{(\w+)\}/g, (all, name) => values[name] ?? all);
}
