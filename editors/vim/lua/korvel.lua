-- Starts kv lsp for the file in the buffer; files of one project, which git keeps, or of one folder share a server.
local clients = {}

return function()
    local git = vim.fn.finddir('.git', vim.fn.expand('%:p:h') .. ';')
    local folder = git == '' and vim.fn.expand('%:p:h') or vim.fn.fnamemodify(git, ':p:h:h')
    local config = { name = 'korvel', cmd = { 'kv', 'lsp' }, root_dir = folder }
    vim.bo.omnifunc = 'v:lua.vim.lsp.omnifunc'
    if vim.lsp.start then return vim.lsp.start(config) end
    -- Neovim 0.7
    config.on_exit = function() clients[folder] = nil end
    clients[folder] = clients[folder] or vim.lsp.start_client(config)
    if clients[folder] then vim.lsp.buf_attach_client(0, clients[folder]) end
end
